#!/usr/bin/env bash
# Says plainly which tools are missing: the build tools, or with --fuzz the
# fuzzer's (clang with libFuzzer), with --memcheck valgrind. With --install,
# installs the missing build and fuzzer tools from Debian's packages first
# (needs root).
set -u

install=0
want=build
for arg in "$@"; do
  case $arg in
    --install) install=1 ;;
    --fuzz) want=fuzz ;;
    --memcheck) want=memcheck ;;
  esac
done
# After installing, check again: the build tools, then the fuzzer's.
recheck() { "$0" && "$0" --fuzz; }

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
if [ $want = build ] || [ $install -eq 1 ]; then
  command -v cmake >/dev/null 2>&1 || missing+=(cmake)
  command -v g++ >/dev/null 2>&1 || missing+=(g++)
  command -v make >/dev/null 2>&1 || missing+=(make)
  [ -f /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)
fi
if [ $want = fuzz ] || [ $install -eq 1 ]; then
  fuzzer_links || missing+=(clang libclang-rt-dev)
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
  echo "q7cal cannot be built: missing ${missing[*]}."
  echo "Install with: apt-get install -y ${missing[*]}"
  exit 1
fi
