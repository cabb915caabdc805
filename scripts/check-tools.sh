#!/usr/bin/env bash
# Says plainly which tools are missing: the build tools, with --test also
# the test tools (GoogleTest, and the real readers of q7cal-report's files:
# xmllint, Debian's junitparser, Chromium and dygraphs), or with --fuzz the
# fuzzer's (clang with libFuzzer), with --memcheck valgrind, with --deb the
# packaging tools (dpkg-shlibdeps, lintian), with --bench the reference tool
# and GNU time, with --cross the MIPS cross compiler and qemu-user (make
# cross-test). With --install, installs the missing build, fuzzer and
# packaging tools, or with --cross the cross tools, from Debian's packages
# first (needs root).
set -u

install=0
want=build
for arg in "$@"; do
  case $arg in
    --install) install=1 ;;
    --test) want=test ;;
    --fuzz) want=fuzz ;;
    --memcheck) want=memcheck ;;
    --deb) want=deb ;;
    --bench) want=bench ;;
    --cross) want=cross ;;
  esac
done
# After installing, check again: the build tools, the fuzzer's and the
# packaging tools (or the cross tools).
recheck() {
  if [ $want = cross ]; then "$0" --cross; else "$0" --test && "$0" --fuzz && "$0" --deb; fi
}

# clang compiles and links a libFuzzer target.
fuzzer_links() {
  command -v clang++ >/dev/null 2>&1 || return 1
  local probe
  probe=$(mktemp -d) || return 1
  printf 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char *, unsigned long) { return 0; }\n' >"$probe/probe.cpp"
  clang++ -fsanitize=fuzzer,address "$probe/probe.cpp" -o "$probe/probe" >/dev/null 2>&1
  local ok=$?
  rm -rf "$probe"
  return $ok
}

missing=()
if [ $want = build ] || [ $want = test ] || { [ $install -eq 1 ] && [ $want != cross ]; }; then
  command -v cmake >/dev/null 2>&1 || missing+=(cmake)
  command -v g++ >/dev/null 2>&1 || missing+=(g++)
  command -v make >/dev/null 2>&1 || missing+=(make)
  # q7cal-report's JUnit and JSON writers.
  [ -f /usr/include/tinyxml2.h ] || missing+=(libtinyxml2-dev)
  [ -f /usr/include/nlohmann/json.hpp ] || missing+=(nlohmann-json3-dev)
fi
if [ $want = test ] || { [ $install -eq 1 ] && [ $want != cross ]; }; then
  [ -f /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)
  # What reads q7cal-report's files in the tests, as a production line would;
  # dygraphs also draws the page's plots.
  [ -f /usr/share/javascript/dygraphs/dygraph.min.js ] || missing+=(libjs-dygraphs)
  command -v xmllint >/dev/null 2>&1 || missing+=(libxml2-utils)
  /usr/bin/python3 -c 'import junitparser' >/dev/null 2>&1 || missing+=(python3-junitparser)
  command -v chromium >/dev/null 2>&1 || missing+=(chromium)
fi
if [ $want = deb ] || { [ $install -eq 1 ] && [ $want != cross ]; }; then
  command -v dpkg-shlibdeps >/dev/null 2>&1 || missing+=(dpkg-dev)
  command -v lintian >/dev/null 2>&1 || missing+=(lintian)
fi
if [ $want = bench ]; then
  command -v i2cget >/dev/null 2>&1 || missing+=(i2c-tools)
  [ -x /usr/bin/time ] || missing+=(time)
fi
if [ $want = fuzz ] || { [ $install -eq 1 ] && [ $want != cross ]; }; then
  fuzzer_links || missing+=(clang libclang-rt-dev)
fi
if [ $want = cross ]; then
  # GoogleTest is built for the target from its sources (package googletest).
  command -v cmake >/dev/null 2>&1 || missing+=(cmake)
  command -v make >/dev/null 2>&1 || missing+=(make)
  command -v mips-linux-gnu-g++ >/dev/null 2>&1 || missing+=(g++-mips-linux-gnu)
  command -v qemu-mips >/dev/null 2>&1 || missing+=(qemu-user)
  [ -f /usr/src/googletest/CMakeLists.txt ] || missing+=(googletest)
fi
if [ $want = memcheck ]; then
  command -v valgrind >/dev/null 2>&1 || missing+=(valgrind)
fi

if [ ${#missing[@]} -gt 0 ] && [ $install -eq 1 ]; then
  echo "Installing missing tools: ${missing[*]}"
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" && recheck
  exit $?
fi

if [ ${#missing[@]} -gt 0 ]; then
  case $want in
    build) echo "q7cal cannot be built: missing ${missing[*]}." ;;
    test) echo "make test needs: ${missing[*]}." ;;
    cross) echo "make cross-test needs: ${missing[*]}." ;;
    *) echo "make $want needs: ${missing[*]}." ;;
  esac
  echo "Install with: apt-get install -y ${missing[*]}"
  exit 1
fi
