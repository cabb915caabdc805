#!/usr/bin/env bash
# The files a production line keeps, read by the tools that read them: the
# JUnit file validated by the strict JUnit schema of Apache Ant (JUnit.xsd)
# and read by Debian's junitparser, the JSON records, and the HTML page
# rendered in headless Chromium (its verdict and plots read from the DOM).
# Also the command line as getopt_long reads it, and the times of a live pipe.
# Usage: report_files_test.sh REPORT GOLDEN_REPORT_DIR
set -u
report=$1
golden=$2
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Two units at once, a healthy one and one whose store was corrupted; the
# options in getopt_long's forms: "--opt value", "--opt=value", an
# abbreviation, and "--" before the transcripts.
"$report" --station ST7 --oper="Ada L" --junit "$scratch/units.xml" --json="$scratch/units.json" \
  --html "$scratch/units.html" -- "$golden/healthy_run.in" "$golden/corrupted_store.in" \
  >"$scratch/out" 2>"$scratch/err"
status=$?
[ $status -eq 1 ] || fail "two units, one failing: status $status, expected 1"
[ "$(grep -c '^q7cal-report: PASS unit 02:1A:C7:30:5E:81 (simulated device)' "$scratch/out")" = 1 ] ||
  fail "no PASS line for the healthy unit: $(cat "$scratch/out")"

xmllint --noout --schema "$here/JUnit.xsd" "$scratch/units.xml" 2>"$scratch/xmllint" ||
  fail "the JUnit file is not valid by the strict schema: $(cat "$scratch/xmllint")"

chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
  --disable-component-update --disable-sync --user-data-dir="$scratch/browser" \
  --dump-dom "file://$scratch/units.html" >"$scratch/dom.html" 2>/dev/null ||
  fail "Chromium could not render the page"

/usr/bin/python3 "$here/check_report_files.py" "$scratch/units.xml" "$scratch/units.json" "$scratch/dom.html" ||
  fail "the files do not say what the units showed"

# A live pipe: each check is timed by when its line arrived.
{
  sed -n '1,300p' "$golden/healthy_run.in"
  sleep 0.5
  sed -n '301,$p' "$golden/healthy_run.in"
} | "$report" --json="$scratch/live.json" >/dev/null || fail "the live healthy run did not pass"
/usr/bin/python3 - "$scratch/live.json" <<'PY' || fail "the live run's times do not show the pause"
import json, sys
unit = json.load(open(sys.argv[1]))["units"][0]
assert unit["context"]["timed"] and unit["context"]["seconds"] >= 0.3, unit["context"]
assert max(check["seconds"] for check in unit["checks"]) >= 0.3
PY

# The command line.
expect() {  # STATUS STDERR-PATTERN ARGUMENT... ("" for any stderr)
  local want=$1 pattern=$2
  shift 2
  "$report" "$@" <"$golden/healthy_run.in" >"$scratch/out" 2>"$scratch/err"
  local got=$?
  [ $got -eq "$want" ] || fail "q7cal-report $*: status $got, expected $want"
  [ -z "$pattern" ] || grep -q -- "$pattern" "$scratch/err" || fail "q7cal-report $*: stderr '$(cat "$scratch/err")' lacks '$pattern'"
}
expect 2 "Try 'q7cal-report --help'" --bogus
expect 2 "Try 'q7cal-report --help'" --json
expect 2 "ambiguous" --j="$scratch/x"
expect 2 "names one unit" --unit=SN1 "$golden/healthy_run.in" "$golden/stuck_led.in"
expect 2 "cannot read $scratch/none.log: No such file" "$scratch/none.log"
[ "$(cat "$scratch/out" "$scratch/err" | wc -l)" -eq 1 ] || fail "a missing transcript is said more than once: $(cat "$scratch/out" "$scratch/err")"
expect 2 "belong to --history" --until=2026-11-01
expect 2 "cannot write $scratch/none/unit.json" --json="$scratch/none/unit.json"
echo '{"limits": {"Temperature": {"low": 50, "high": 60}}}' >"$scratch/bad-limits.json"
expect 2 "is not a limits table" --limits "$scratch/bad-limits.json"
echo '{"limits": {"Temperature": {"low": 50, "high": 60, "unit": "C"}}}' >"$scratch/hot-limits.json"
expect 1 "Temperature = 33 C is outside its limits 50 to 60 C" --limits="$scratch/hot-limits.json"
expect 0 "" --unit=SN1042 -- -
grep -q '^q7cal-report: PASS unit SN1042 (simulated device) from standard input' "$scratch/out" ||
  fail "--unit does not name the unit: $(cat "$scratch/out")"
"$report" --version | grep -q '^q7cal-report [0-9]' || fail "--version"
"$report" --he | grep -q -- '--limits=FILE' || fail "--help (abbreviated) does not list --limits"

[ $failures -eq 0 ] && echo "report files: all checks passed"
exit $((failures > 0))
