#!/usr/bin/env bash
# Feeds CASE.in to the program and compares its whole stdout with CASE.out and
# its exit status with CASE.status (0 when there is no such file).
#
#   run_transcript.sh Q7CAL CASE            compare
#   run_transcript.sh --record Q7CAL CASE   write CASE.out from the program:
#       check every line against the texts the commands are meant to print
#       before committing it; a recorded transcript proves nothing by itself.
#   --stderr (before PROGRAM): CASE.out holds standard error and output merged.
set -u
record=0
merge=0
while :; do
  case "${1:-}" in
    --record) record=1; shift ;;
    --stderr) merge=1; shift ;;
    *) break ;;
  esac
done
bin=$1
case=$2

actual=$(mktemp)
trap 'rm -f "$actual"' EXIT
if [ $merge -eq 1 ]; then
  "$bin" <"$case.in" >"$actual" 2>&1
else
  "$bin" <"$case.in" >"$actual"
fi
status=$?

if [ $record -eq 1 ]; then
  cp "$actual" "$case.out"
  [ $status -eq 0 ] && rm -f "$case.status" || echo $status >"$case.status"
  echo "recorded $case.out (exit status $status)"
  exit 0
fi

expected_status=0
[ -f "$case.status" ] && expected_status=$(cat "$case.status")
failed=0
if ! cmp -s "$case.out" "$actual"; then
  echo "stdout differs from $case.out (- expected, + actual):"
  diff -u "$case.out" "$actual" | cat -A | head -200
  failed=1
fi
if [ "$status" != "$expected_status" ]; then
  echo "exit status $status, expected $expected_status"
  failed=1
fi
exit $failed
