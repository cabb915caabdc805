#!/usr/bin/env bash
# The command line: -h/--help and -V/--version answer on stdout with status 0
# and never reach the device; anything else (an operand too) names the wrong
# argument on stderr with status 2. A copy of the program without a Cal API
# library beside it does not start. Usage: command_line_test.sh PROGRAM VERSION
set -u
program=$1
version=$2
failures=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
out=$scratch/out
err=$scratch/err

fail() { echo "$call: $*"; failures=$((failures + 1)); }

# expect STATUS STDOUT-FIRST-LINE STDERR ARGUMENT...: "" for nothing at all.
expect() {
  local status=$1 first_out=$2 want_err=$3
  shift 3
  call="q7cal $*"
  "$program" "$@" </dev/null >"$out" 2>"$err"
  local actual=$?
  [ "$actual" -eq "$status" ] || fail "status $actual, expected $status"
  [ "$(head -n 1 "$out")" = "$first_out" ] || fail "stdout starts '$(head -n 1 "$out")', expected '$first_out'"
  [ "$(cat "$err")" = "$want_err" ] || fail "stderr '$(cat "$err")', expected '$want_err'"
}

usage='Usage: q7cal [-h | --help | -V | --version]'
for option in -h --help; do
  expect 0 "$usage" "" $option
  grep -q -- '-V, --version  show the version and exit' "$out" || fail "the help does not list -V"
  grep -q -- '128+N' "$out" || fail "the help does not list every exit status"
  ! grep -q 'Trying to open handle' "$out" || fail "the help went on to the device"
done
for option in -V --version; do
  expect 0 "q7cal $version" "" $option
  [ "$(wc -l <"$out")" -eq 1 ] || fail "more than the version: $(cat "$out")"
done
# As getopt_long reads them: abbreviations, and "--" ending the options.
expect 0 "q7cal $version" "" --vers
expect 0 "$usage" "" --he --version
wrong() { echo "q7cal: $1 '$2'; try 'q7cal --help'"; }
expect 2 "" "$(wrong "unknown option" -x)" -x
expect 2 "" "$(wrong "unknown option" --bogus)" --bogus
expect 2 "" "$(wrong "unknown option" --HELP)" --HELP
expect 2 "" "$(wrong "unknown option" --help=x)" --help=x
expect 2 "" "$(wrong "unexpected argument" help)" help
expect 2 "" "$(wrong "unexpected argument" -V)" -- -V
# Options end at the first operand whatever POSIXLY_CORRECT says, and all are
# read before any is acted on: an operand or a wrong letter anywhere is refused.
expect 2 "" "$(wrong "unexpected argument" foo)" foo -h
expect 2 "" "$(wrong "unexpected argument" foo)" -h foo
expect 2 "" "$(wrong "unknown option" -x)" -hx
# The answer that standard output cannot take is no success.
for option in -h -V; do
  call="q7cal $option >/dev/full"
  "$program" $option </dev/null >/dev/full 2>"$err"
  status=$?
  [ $status -eq 4 ] || fail "status $status, expected 4"
  grep -q '^q7cal: write error on standard output: ' "$err" || fail "stderr '$(cat "$err")'"
done

# The run path names no build folder: alone, the program finds no library.
# (In a cross build the program is a script that runs it under the emulator.)
call="a copy of q7cal without its library"
if [ "$(head -c 4 "$program")" = "$(printf '\177ELF')" ]; then
  cp "$program" "$scratch/q7cal"
  "$scratch/q7cal" --version >/dev/null 2>&1
  [ $? -eq 127 ] || fail "started; its run path reaches a library outside its folder"
fi

[ "$failures" -eq 0 ] && echo "command line: all checks passed"
exit $((failures > 0))
