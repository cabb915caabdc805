# q7cal: `make run` builds and starts the program against the simulated device;
# `make test` builds the sanitized test configuration and runs every test.
# Those two install what they need from Debian's packages when run as root
# (`make deps` installs the whole list, packaging/packages.txt); every other
# target only says what is missing (scripts/check-tools.sh).
# `make install` (PREFIX, DESTDIR), `make deb` (the two Debian packages, in
# build/) and `make bench` (start-up, write, automated-run and sleep figures)
# use the Release build. `make fuzz-ci` fuzzes faulted sessions for a minute,
# `make fuzz-long HOURS=N` for hours (FUZZ_JOBS parallel jobs, 1 by default);
# `make memcheck` runs the golden sessions and the prompt walk under valgrind;
# `make cross-test` runs every test on 32-bit big-endian MIPS under qemu-user.
# The targets the project's CI runs stop at any compiler warning (Q7_WERROR).
.PHONY: all run build test cross-test install uninstall deb bench fuzz fuzz-ci fuzz-long memcheck clean deps

BUILD_DIR    := build
TEST_DIR     := build-test
FUZZ_DIR     := build-fuzz
MEMCHECK_DIR := build-memcheck
CROSS_DIR    := build-mips
PREFIX       := /usr/local
JOBS         ?= $(shell nproc)
FUZZ_SECONDS := 60
HOURS        ?= 1
FUZZ_JOBS    ?= 1

# Plain `make` builds and runs nothing.
all: build

# Build chatter goes to stderr, so that stdout carries only the program's
# own output when a script pipes answers through `make run`. Only the
# program and the simulated device are built: q7cal-report needs more.
run:
	@scripts/check-tools.sh --install run >&2
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release -DQ7_BUILD_REPORT=OFF >&2
	@cmake --build $(BUILD_DIR) -j $(JOBS) --target q7cal >&2
	@./$(BUILD_DIR)/q7cal

build:
	@scripts/check-tools.sh build >&2
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release -DQ7_BUILD_REPORT=ON >&2
	@cmake --build $(BUILD_DIR) -j $(JOBS) >&2

test:
	@scripts/check-tools.sh --install test >&2
	@cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DQ7_SANITIZE=ON -DQ7_TESTS=ON -DQ7_WERROR=ON
	@cmake --build $(TEST_DIR) -j $(JOBS)
	@cd $(TEST_DIR) && ctest --output-on-failure -j $(JOBS)

# The Release program, the simulated device and every test, built by Debian's
# cross compiler for 32-bit big-endian MIPS and run under qemu-mips: the
# program's output must not depend on the host's byte order or word size.
# The device's host has no q7cal-report, nor its libraries.
cross-test:
	@scripts/check-tools.sh cross >&2
	@cmake -S . -B $(CROSS_DIR) -DCMAKE_BUILD_TYPE=Release -DQ7_TESTS=ON -DQ7_WERROR=ON -DQ7_BUILD_REPORT=OFF \
	       -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mips-linux-gnu.cmake
	@cmake --build $(CROSS_DIR) -j $(JOBS)
	@cd $(CROSS_DIR) && ctest --output-on-failure -j $(JOBS)

# `preinstall` relinks the program with its installed run path.
install: build
	@cmake --build $(BUILD_DIR) --target preinstall >&2
	@DESTDIR=$(DESTDIR) cmake --install $(BUILD_DIR) --prefix $(PREFIX)

# Removes what the last `make install` from this build folder installed.
uninstall:
	@DESTDIR=$(DESTDIR) scripts/uninstall.sh $(BUILD_DIR)/install_manifest.txt

# The two packages, q7cal for the device's host and q7cal-report for the
# line's computer, checked as a distribution would check them (no lintian
# error or warning), and their dependencies against packaging/packages.txt.
deb: build
	@scripts/check-tools.sh deb >&2
	@rm -f $(BUILD_DIR)/*.deb
	@cd $(BUILD_DIR) && cpack -G DEB
	@lintian --fail-on error,warning $(BUILD_DIR)/q7cal_*.deb $(BUILD_DIR)/q7cal-report_*.deb
	@packaging/check-packages.sh $(BUILD_DIR)/q7cal_*.deb $(BUILD_DIR)/q7cal-report_*.deb

bench: build
	@cmake --build $(BUILD_DIR) --target bench_cpu_time calapi_stub >&2
	@scripts/bench.sh
# The session fuzzer, built by clang in a folder of its own.
fuzz:
	@scripts/check-tools.sh fuzz >&2
	@cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQ7_FUZZ=ON -DQ7_WERROR=ON -DQ7_BUILD_REPORT=OFF \
	       -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++
	@cmake --build $(FUZZ_DIR) -j $(JOBS) --target q7cal_fuzz

# Faulted sessions (tests/fuzz/faulted_session.h), judged for store safety and
# for verdicts without a value read back: seeded with tests/fuzz/corpus, the
# golden sessions and the past regressions (tests/fuzz/fuzz.sh). Prints the
# sessions run and fails on a finding, whose input is written to $(FUZZ_DIR)/.
fuzz-ci: fuzz
	@tests/fuzz/fuzz.sh $(FUZZ_DIR) $(FUZZ_SECONDS) 1

fuzz-long: fuzz
	@tests/fuzz/fuzz.sh $(FUZZ_DIR) $$(($(HOURS) * 3600)) $(FUZZ_JOBS)

# Unsanitized debug build under valgrind: every golden session and the prompt
# walk, with no leak and no memory error.
memcheck:
	@scripts/check-tools.sh memcheck >&2
	@cmake -S . -B $(MEMCHECK_DIR) -DCMAKE_BUILD_TYPE=Debug -DQ7_TESTS=ON -DQ7_BUILD_REPORT=OFF
	@cmake --build $(MEMCHECK_DIR) -j $(JOBS) --target q7cal q7cal_instant q7cal_tests
	@tests/memcheck.sh $(MEMCHECK_DIR)

# Every package of the list: installed as root, else named.
deps:
	@scripts/check-tools.sh --install all

clean:
	rm -rf $(BUILD_DIR) $(TEST_DIR) $(FUZZ_DIR) $(MEMCHECK_DIR) $(CROSS_DIR)
