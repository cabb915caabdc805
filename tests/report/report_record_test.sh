#!/usr/bin/env bash
# A recorded transcript's whole record as q7cal-report keeps it: its JSON
# compared with CASE.json, and its JUnit with CASE.xml where there is one, so
# that no check, measurement, limit, property or line of the record changes
# unnoticed. The host's name and the transcript's time are the run's own and
# are left out.
#   report_record_test.sh [--record] REPORT CASE
set -u
record=0
[ "$1" = --record ] && record=1 && shift
report=$1
case=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$report" --unit=SN1042 --station=ST7 --operator=Q --json="$scratch/record.json" --junit="$scratch/record.xml" \
  - <"$case.in" >/dev/null 2>&1
[ $? -le 1 ] || { echo "q7cal-report did not judge $case.in"; exit 1; }
for kind in json xml; do
  sed -E 's/("hostname": |hostname=)"[^"]*"/\1"HOST"/; s/("start_time": |timestamp=)"[^"]*"/\1"TIME"/' \
    "$scratch/record.$kind" >"$scratch/kept.$kind"
  if [ $record -eq 1 ]; then
    [ $kind = json ] || [ -f "$case.xml" ] && cp "$scratch/kept.$kind" "$case.$kind"
  elif [ -f "$case.$kind" ] && ! diff -u "$case.$kind" "$scratch/kept.$kind" >"$scratch/diff"; then
    echo "the $kind record differs from $case.$kind (- expected, + actual):"
    head -100 "$scratch/diff"
    exit 1
  fi
done
exit 0
