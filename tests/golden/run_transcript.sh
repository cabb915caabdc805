#!/usr/bin/env bash
# Feeds CASE.in to the program and compares its whole stdout with CASE.out and
# its exit status with CASE.status (0 when there is no such file). A run that
# takes over a minute fails. CASE.in holds a session's answers, one a line,
# with comments that say what each is for: answers.sh leaves them out.
#
# Menu screens are the menu table's, which the menu-navigation case pins: in
# every other case each screen (heading, rows, rule and "ENTER OPTION : ")
# stands as one line "[menu: TITLE]" in both the expected and the actual
# output, so that a new menu row changes one transcript only.
#
#   run_transcript.sh [--with-menus] [--stderr] PROGRAM CASE            compare
#   run_transcript.sh --record [--with-menus] [--stderr] PROGRAM CASE   write CASE.out from the program:
#       check every line against the texts the commands are meant to print
#       before committing it; a recorded transcript proves nothing by itself.
#   --stderr: CASE.out holds standard error and output merged.
#   --transcript: CASE.in is a transcript for q7cal-report, fed as it is.
set -u
record=0
menus=0
merge=0
transcript=0
while :; do
  case "${1:-}" in
    --record) record=1; shift ;;
    --with-menus) menus=1; shift ;;
    --stderr) merge=1; shift ;;
    --transcript) transcript=1; shift ;;
    *) break ;;
  esac
done
bin=$1
case=$2

actual=$(mktemp)
expected=$(mktemp)
input=$(mktemp)
trap 'rm -f "$actual" "$expected" "$input"' EXIT
if [ $transcript -eq 1 ]; then
  cp "$case.in" "$input"
else
  "$(dirname "$0")/answers.sh" "$case.in" >"$input"
fi
if [ $merge -eq 1 ]; then
  timeout 60 "$bin" <"$input" >"$actual" 2>&1
else
  timeout 60 "$bin" <"$input" >"$actual"
fi
status=$?
if [ $status -eq 124 ]; then
  echo "the program was still running after 60 seconds"
  exit 1
fi

# Each whole menu screen as one line; the session's other text unchanged.
strip_menus() {
  if [ $menus -eq 1 ]; then
    cat "$1"
  else
    perl -0777 -pe 's/\n\n\*{8} (.+?) \*{8}\n.*?\nENTER OPTION : /\n[menu: $1]/gs' "$1"
  fi
}

if [ $record -eq 1 ]; then
  strip_menus "$actual" >"$case.out"
  [ $status -eq 0 ] && rm -f "$case.status" || echo $status >"$case.status"
  echo "recorded $case.out (exit status $status)"
  exit 0
fi

expected_status=0
[ -f "$case.status" ] && expected_status=$(cat "$case.status")
strip_menus "$case.out" >"$expected"
strip_menus "$actual" >"$expected.actual" && mv "$expected.actual" "$actual"
failed=0
if ! cmp -s "$expected" "$actual"; then
  echo "stdout differs from $case.out (- expected, + actual):"
  diff -u "$expected" "$actual" | cat -A | head -200
  failed=1
fi
if [ "$status" != "$expected_status" ]; then
  echo "exit status $status, expected $expected_status"
  failed=1
fi
exit $failed
