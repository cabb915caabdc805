# q7cal: `make run` builds and starts the program against the simulated device;
# `make test` builds the sanitized test configuration and runs every test.
# `make install` (PREFIX, DESTDIR), `make deb` (the Debian package, in build/)
# and `make bench` (start-up and sleep figures) use the Release build.
.PHONY: run build test install deb bench clean check-tools

BUILD_DIR := build
PREFIX    := /usr/local
TEST_DIR  := build-test
JOBS      := 2

# Build chatter goes to stderr, so that stdout carries only the program's
# own output when a script pipes answers through `make run`.
run: build
	@./$(BUILD_DIR)/q7cal

build: check-tools
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release >&2
	@cmake --build $(BUILD_DIR) -j $(JOBS) >&2

test: check-tools
	@cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DQ7_SANITIZE=ON -DQ7_TESTS=ON
	@cmake --build $(TEST_DIR) -j $(JOBS)
	@cd $(TEST_DIR) && ctest --output-on-failure -j $(JOBS)

install: build
	@DESTDIR=$(DESTDIR) cmake --install $(BUILD_DIR) --prefix $(PREFIX)

deb: build
	@cd $(BUILD_DIR) && cpack -G DEB

bench: build
	@cmake --build $(BUILD_DIR) --target bench_cpu_time >&2
	@scripts/bench.sh

check-tools:
	@scripts/check-tools.sh >&2

clean:
	rm -rf $(BUILD_DIR) $(TEST_DIR)
