# q7cal: `make run` builds and starts the program against the simulated device;
# `make test` builds the sanitized test configuration and runs every test.
.PHONY: run build test clean check-tools

BUILD_DIR := build
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

check-tools:
	@scripts/check-tools.sh >&2

clean:
	rm -rf $(BUILD_DIR) $(TEST_DIR)
