#!/usr/bin/env bash
# What each make target needs from Debian's packages (the rows of
# packaging/packages.txt), checked before it runs.
#
#   check-tools.sh [--install] [TARGET]
#       TARGET: run, build (the default: the console and q7cal-report), test,
#       fuzz, deb, bench, memcheck, cross, or all (the whole list).
#
# A missing package is named with the line that installs it, and the target
# stops. With --install (make run, make test and make deps), as root, it is
# installed instead, with one line that says which.
set -u

list=$(dirname "$0")/../packaging/packages.txt
want=build
install=0
rechecked=0
for arg in "$@"; do
  case $arg in
    --install) install=1 ;;
    --rechecked) rechecked=1 ;;  # after an installation: check, never install again
    run | build | test | fuzz | deb | bench | memcheck | cross | all) want=$arg ;;
    *) echo "check-tools.sh: unknown argument '$arg'" >&2; exit 2 ;;
  esac
done

# The rows a target needs, by the targets each row names: the console's rows
# are also plain make's, and plain make's are also make test's.
case $want in
  run) rows='run' ;;
  build) rows='run|report' ;;
  test) rows='run|report|test' ;;
  all) rows='[a-z]+' ;;
  *) rows=$want ;;
esac

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

installed() {  # HOW WHAT: what shows that a row's package is installed
  case $1 in
    command) command -v "$2" ;;
    file) test -f "$2" ;;
    glob) compgen -G "$2" ;;
    python) /usr/bin/python3 -c "import $2" ;;  # Debian's Python, which its packages extend
    fuzzer) fuzzer_links ;;
  esac >/dev/null 2>&1
}

missing=()
while read -r package targets how what _; do
  case $package in '' | '#'*) continue ;; esac
  [[ ",$targets," =~ ,($rows), ]] || continue
  installed "$how" "$what" || missing+=("$package")
done <"$list"
[ ${#missing[@]} -eq 0 ] && exit 0

case $want in
  build | run) what="q7cal cannot be built" ;;
  cross) what="make cross-test" ;;
  all) what="make deps" ;;
  *) what="make $want" ;;
esac
if [ $install -eq 1 ] && [ $rechecked -eq 0 ] && [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null; then
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
