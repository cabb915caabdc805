#!/usr/bin/env bash
# What each make target needs from Debian's packages, checked before it runs.
# A missing package is installed when this runs as root (one line says which);
# otherwise the line that installs it is printed and the target stops.
#
#   check-tools.sh [--run | --test | --fuzz | --deb | --bench | --cross | --memcheck]
#       the tools of one target; none: plain make's (the program, the simulated
#       device and q7cal-report)
#   check-tools.sh --install           CI: everything make test, make fuzz-ci and
#                                      make deb need, installed at once
#   check-tools.sh --cross --install   CI: the MIPS cross compiler and qemu-user
set -u

want=build
everything=0
rechecked=0
for arg in "$@"; do
  case $arg in
    --install) everything=1 ;;
    --rechecked) rechecked=1 ;;  # after an installation: check, never install again
    --run) want=run ;;
    --test) want=test ;;
    --fuzz) want=fuzz ;;
    --deb) want=deb ;;
    --bench) want=bench ;;
    --cross) want=cross ;;
    --memcheck) want=memcheck ;;
    *) echo "check-tools.sh: unknown argument '$arg'" >&2; exit 2 ;;
  esac
done
[ $everything -eq 1 ] && [ $want = build ] && want=all

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
has() { command -v "$1" >/dev/null 2>&1; }
need() {  # PACKAGE CHECK...: the package unless the check passes
  local package=$1
  shift
  "$@" >/dev/null 2>&1 || missing+=("$package")
}

# The program and the simulated device; libedit for line editing at a
# terminal (the program loads it only there, and runs without it).
run_tools() {
  need cmake has cmake
  need g++ has g++
  need make has make
  need libedit-dev test -f /usr/include/histedit.h
}
# Plain make: also q7cal-report: its JUnit and JSON writers, and the
# history in SQLite or PostgreSQL.
build_tools() {
  run_tools
  need libtinyxml2-dev test -f /usr/include/tinyxml2.h
  need nlohmann-json3-dev test -f /usr/include/nlohmann/json.hpp
  need libsqlite3-dev test -f /usr/include/sqlite3.h
  need libpq-dev test -f /usr/include/postgresql/libpq-fe.h
}
# make test: GoogleTest, and the real readers of q7cal-report's files
# (dygraphs also draws the page's plots).
test_tools() {
  build_tools
  need libgtest-dev test -f /usr/include/gtest/gtest.h
  need libjs-dygraphs test -f /usr/share/javascript/dygraphs/dygraph.min.js
  need libxml2-utils has xmllint
  need python3-junitparser /usr/bin/python3 -c 'import junitparser'
  need chromium has chromium
  # A real PostgreSQL server for the history's tests.
  need postgresql compgen -G '/usr/lib/postgresql/*/bin/postgres'
}
fuzz_tools() {
  fuzzer_links || missing+=(clang libclang-rt-dev)
}
deb_tools() {
  need dpkg-dev has dpkg-shlibdeps
  need lintian has lintian
}
case $want in
  run) run_tools ;;
  build) build_tools ;;
  test) test_tools ;;
  fuzz) fuzz_tools ;;
  deb) deb_tools ;;
  all) test_tools; fuzz_tools; deb_tools ;;
  bench)
    need i2c-tools has i2cget
    need time test -x /usr/bin/time ;;
  memcheck) need valgrind has valgrind ;;
  cross)
    # GoogleTest is built for the target from its sources (package googletest).
    need cmake has cmake
    need make has make
    need g++-mips-linux-gnu has mips-linux-gnu-g++
    need qemu-user has qemu-mips
    need googletest test -f /usr/src/googletest/CMakeLists.txt ;;
esac
[ ${#missing[@]} -eq 0 ] && exit 0

case $want in
  build | run) what="q7cal cannot be built" ;;
  cross) what="make cross-test" ;;
  all) what="CI" ;;
  *) what="make $want" ;;
esac
if [ $rechecked -eq 0 ] && [ "$(id -u)" -eq 0 ] && has apt-get; then
  echo "$what: installing from Debian's packages: ${missing[*]}"
  log=$(mktemp)
  if ! { apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log"
    rm -f "$log"
    echo "$what: the installation failed"
    exit 1
  fi
  rm -f "$log"
  exec "$0" --rechecked "$@"  # each package must have brought what it stands for
fi
echo "$what: missing ${missing[*]}."
echo "Install with: sudo apt-get install -y ${missing[*]}"
exit 1
