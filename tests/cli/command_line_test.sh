#!/usr/bin/env bash
# The command line: --help and --version answer on stdout with status 0 and
# never reach the device; anything else gets the one-line usage on stderr and
# status 2. Usage: command_line_test.sh PROGRAM VERSION
set -u
program=$1
version=$2
usage='Usage: q7cal [--help | --version]'
failures=0
out=$(mktemp)
err=$(mktemp)
trap 'rm -f "$out" "$err"' EXIT

# check WHAT CHECK FILE: CHECK is "=TEXT" for exactly one line TEXT, "^TEXT"
# for a first line TEXT, or "" for nothing at all.
check() {
  local what=$1 check=$2 file=$3
  case $check in
    "") [ ! -s "$file" ] ;;
    =*) [ "$(cat "$file")" = "${check#=}" ] && [ "$(wc -l <"$file")" -eq 1 ] ;;
    ^*) [ "$(head -n 1 "$file")" = "${check#^}" ] ;;
  esac || { echo "$call: $what differs; expected ${check:-nothing}, got:"; cat "$file"; failures=$((failures + 1)); }
}

# expect STATUS STDOUT-CHECK STDERR-CHECK ARGUMENT...
expect() {
  local status=$1 out_check=$2 err_check=$3
  shift 3
  call="q7cal $*"
  "$program" "$@" </dev/null >"$out" 2>"$err"
  local actual=$?
  [ "$actual" -eq "$status" ] || { echo "$call: status $actual, expected $status"; failures=$((failures + 1)); }
  check stdout "$out_check" "$out"
  check stderr "$err_check" "$err"
}

expect 0 "^$usage" "" --help
grep -q -- '--version  show the version and exit' "$out" || { echo "--help does not list --version"; failures=$((failures + 1)); }
expect 0 "=q7cal $version" "" --version
for arguments in "--bogus" "-h" "help" "--help --version" "--version extra" "--" "--HELP"; do
  # shellcheck disable=SC2086
  expect 2 "" "=$usage" $arguments
done

[ "$failures" -eq 0 ] && echo "command line: all checks passed"
exit $((failures > 0))
