#!/usr/bin/env bash
# The files a production line keeps, read by the tools that read them: the
# JUnit file validated by the strict JUnit schema of Apache Ant (JUnit.xsd)
# and read by Debian's junitparser, the JSON records, and the HTML page
# rendered in headless Chromium (its verdict and plots read from the DOM).
# Also the command line as getopt_long reads it, and the times of a live pipe.
# Usage: report_files_test.sh REPORT GOLDEN_REPORT_DIR Q7CAL ANSWERS
set -u
report=$1
golden=$2
q7cal=$3
answers=$4
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Two units at once, a healthy one and one whose store was corrupted; the
# options in getopt_long's forms: "--opt value", "--opt=value", an
# abbreviation, and "--" before the transcripts. Each file is made as the
# umask asks, though each is written aside and renamed into place.
(umask 027 && exec "$report" --station ST7 --oper="Ada L" --junit "$scratch/units.xml" --json="$scratch/units.json" \
  --html "$scratch/units.html" -- "$golden/healthy_run.in" "$golden/corrupted_store.in" \
  >"$scratch/out" 2>"$scratch/err")
status=$?
[ $status -eq 1 ] || fail "two units, one failing: status $status, expected 1"
[ "$(stat -c %a "$scratch/units.xml" "$scratch/units.json" "$scratch/units.html" | sort -u)" = 640 ] ||
  fail "the files are not as the umask 027 asks: $(stat -c '%n %a' "$scratch"/units.*)"
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

# A live pipe: each check is timed by when its line arrived. A reader held
# up by a busy machine reads what waited as one burst, so a pipe's timing
# gets three tries; a program that holds its lines back fails every one.
live_healthy_run() {
  {
    sed -n '1,300p' "$golden/healthy_run.in"
    sleep 0.5
    sed -n '301,$p' "$golden/healthy_run.in"
  } | "$report" --json="$scratch/live.json" >/dev/null || return 1
  /usr/bin/python3 - "$scratch/live.json" <<'PY'
import datetime, json, sys
unit = json.load(open(sys.argv[1]))["units"][0]
assert unit["context"]["timed"] and unit["context"]["seconds"] >= 0.3, unit["context"]
started = datetime.datetime.strptime(unit["context"]["start_time"], "%Y-%m-%dT%H:%M:%S.%fZ")
now = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None)
assert abs((now - started).total_seconds()) < 600, unit["context"]  # when its first line came
assert max(check["seconds"] for check in unit["checks"]) >= 0.3
PY
}
# q7cal itself on a live pipe: it writes each line as it completes, so that
# the band's first check carries the half second its mandated wait took.
"$here/../golden/answers.sh" "$answers" >"$scratch/answers"
live_q7cal_run() {
  "$q7cal" <"$scratch/answers" | "$report" --json="$scratch/q7cal-live.json" >/dev/null || return 1
  /usr/bin/python3 - "$scratch/q7cal-live.json" <<'PY'
import json, sys
checks = {c["name"]: c["seconds"] for c in json.load(open(sys.argv[1]))["units"][0]["checks"]}
assert checks["GetBandConfig and SetBandConfig: 2500000 kHz, 10000 kHz"] >= 0.3, checks
PY
}
live_healthy_run || live_healthy_run || live_healthy_run || fail "the live run's times do not show the pause"
live_q7cal_run || live_q7cal_run || live_q7cal_run || fail "q7cal's lines do not arrive as they are printed"

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
# A product's limits: the plan's own table with one quantity moved; one
# that misspells a quantity is refused before anything is judged.
"$report" --print-limits >"$scratch/limits.json" || fail "--print-limits"
sed '/"Temperature"/,/}/ s/"low": 30.0/"low": 50.0/; /"Temperature"/,/}/ s/"high": 45.0/"high": 60.0/;
     /"Temperature"/,/}/ s/"marginal_low": 32.0/"marginal_low": 50.0/; /"Temperature"/,/}/ s/"marginal_high": 42.0/"marginal_high": 60.0/' \
  "$scratch/limits.json" >"$scratch/hot-limits.json"
expect 1 "Temperature = 33 C is outside its limits 50 to 60 C" --limits="$scratch/hot-limits.json"
# A quantity without a marginal band is printed without one.
"$report" --limits="$scratch/hot-limits.json" --print-limits | /usr/bin/python3 -c 'import json, sys
t = json.load(sys.stdin)["limits"]["Temperature"]
assert (t["low"], t["high"]) == (50, 60) and "marginal_low" not in t and "marginal_high" not in t, t' ||
  fail "--print-limits shows a marginal band a quantity does not have"
sed 's/"Temperature"/"Temprature"/' "$scratch/limits.json" >"$scratch/bad-limits.json"
expect 2 '"Temprature" is no quantity the automated run measures' --limits "$scratch/bad-limits.json"
expect 2 "^q7cal-report: cannot read $scratch/no-limits.json: No such file or directory$" --limits="$scratch/no-limits.json"
expect 0 "" --unit=SN1042 -- -
grep -q '^q7cal-report: PASS unit SN1042 (simulated device) from standard input' "$scratch/out" ||
  fail "--unit does not name the unit: $(cat "$scratch/out")"
"$report" --version | grep -q '^q7cal-report [0-9]' || fail "--version"
"$report" --he | grep -q -- '--limits=FILE' || fail "--help (abbreviated) does not list --limits"

# A batch with an input that is no transcript and one that cannot be read:
# each an ERROR unit in every file, and the batch an ERROR.
: >"$scratch/empty.log"
"$report" --json="$scratch/batch.json" --junit="$scratch/batch.xml" --html="$scratch/batch.html" \
  "$golden/healthy_run.in" "$scratch/empty.log" "$scratch/missing.log" >/dev/null 2>"$scratch/err"
[ $? -eq 2 ] || fail "a batch with unreadable inputs: status is not 2"
xmllint --noout --schema "$here/JUnit.xsd" "$scratch/batch.xml" 2>/dev/null || fail "the batch's JUnit is not valid"
/usr/bin/python3 - "$scratch/batch.json" "$scratch/batch.xml" <<'PY' || fail "the batch's files do not show its ERROR units"
import json, sys, junitparser
document = json.load(open(sys.argv[1]))
assert document["verdict"] == "ERROR", document["verdict"]
assert [u["verdict"] for u in document["units"]] == ["PASS", "ERROR", "ERROR"], [u["verdict"] for u in document["units"]]
assert document["units"][1]["error"].endswith("is not a q7cal transcript"), document["units"][1]["error"]
suites = list(junitparser.JUnitXml.fromfile(sys.argv[2]))
assert [s.errors for s in suites] == [0, 1, 1], [s.errors for s in suites]
PY
grep -q '<div id="verdict" class="error">ERROR</div>' "$scratch/batch.html" || fail "the batch's page does not say ERROR"

# A line past 64 KiB is cut there: the failure of an unexpected one quotes
# 65,536 bytes of it.
/usr/bin/python3 - "$report" "$golden/healthy_run.in" <<'PY' || fail "a line past 64 KiB is not cut there"
import json, subprocess, sys
lines = open(sys.argv[2]).read().split("\n")
lines.insert(300, "x" * 70000)
run = subprocess.run([sys.argv[1], "--json=-"], input="\n".join(lines).encode(), capture_output=True)
checks = json.loads(run.stdout)["units"][0]["checks"]
assert [c["message"] for c in checks if c["type"] == "unexpected line"] == ["unexpected line 301: " + "x" * 65536]
PY

# Identities: text that is no UTF-8 (Latin-1, an overlong form of U+07FF) is
# refused; a barcode's group separator, and a DEL a backspace key left, are
# kept in the JSON and shown by their pictures where XML cannot carry them.
for operator in $'Jos\xe9 Ruiz' $'Jos\xe0\x9f\xbf'; do
  "$report" --operator="$operator" --json="$scratch/jose.json" <"$golden/healthy_run.in" >/dev/null 2>"$scratch/err"
  [ $? -eq 2 ] && [ "$(wc -l <"$scratch/err")" -eq 1 ] && [ ! -e "$scratch/jose.json" ] ||
    fail "an operator that is no UTF-8: $(cat "$scratch/err")"
done
"$report" --unit=$'SN42\x1d10LOT7\x7f' --junit="$scratch/gs1.xml" --json="$scratch/gs1.json" --html="$scratch/gs1.html" \
  <"$golden/healthy_run.in" >/dev/null 2>&1 || fail "a unit named by a GS1 barcode does not pass"
xmllint --noout --schema "$here/JUnit.xsd" "$scratch/gs1.xml" 2>/dev/null || fail "a GS1 barcode breaks the JUnit file"
xmllint --noout --html "$scratch/gs1.html" 2>/dev/null || fail "a GS1 barcode breaks the page"
/usr/bin/python3 - "$scratch/gs1.json" "$scratch/gs1.xml" <<'PY' || fail "a GS1 barcode is not kept"
import json, sys, junitparser
assert json.load(open(sys.argv[1]))["units"][0]["unit"]["id"] == "SN42\x1d10LOT7\x7f"
assert next(iter(junitparser.JUnitXml.fromfile(sys.argv[2]))).name.startswith("SN42\u241d10LOT7\u2421")
PY

# Files written whole or not at all: an output may not replace an input; a
# summary to a reader that has gone is an output error; "-" is standard
# output; a file-size limit leaves the previous file as it was.
cp "$golden/healthy_run.in" "$scratch/SN1.log"
"$report" --json="$scratch/SN1.log" "$scratch/SN1.log" >/dev/null 2>"$scratch/err"
[ $? -eq 2 ] && cmp -s "$scratch/SN1.log" "$golden/healthy_run.in" || fail "an output that names its input: $(cat "$scratch/err")"
/usr/bin/python3 - "$report" "$golden/healthy_run.in" <<'PY' || fail "a summary to a reader that has gone is not an output error"
import os, subprocess, sys
read, write = os.pipe()
os.close(read)
run = subprocess.run([sys.argv[1]], stdin=open(sys.argv[2]), stdout=write, stderr=subprocess.PIPE)
assert run.returncode == 2 and run.stderr == b"q7cal-report: cannot write standard output: Broken pipe\n", run
PY
"$report" --json=- <"$golden/healthy_run.in" 2>"$scratch/err" | /usr/bin/python3 -c 'import json, sys; json.load(sys.stdin)' ||
  fail "--json=- is not JSON on standard output"
grep -q '^q7cal-report: PASS unit' "$scratch/err" || fail "with --json=-, the summary is not on standard error"
[ ! -e ./- ] || fail "--json=- made a file named -"
# What is read and what is written stay apart, nothing written otherwise:
# two outputs to one file not there yet, however it is spelt; two to
# standard output; an output that is an input, by its name or another.
mkdir "$scratch/apart"
cp "$golden/healthy_run.in" "$scratch/apart/unit.log"
apart() {  # WHAT MESSAGE OPTIONS...
  local what=$1 message=$2
  shift 2
  (cd "$scratch/apart" && exec "$report" "$@") >/dev/null 2>"$scratch/err"
  local status=$?
  [ $status -eq 2 ] && [ "$(cat "$scratch/err")" = "q7cal-report: $message: nothing written" ] &&
    [ "$(ls "$scratch/apart")" = unit.log ] && cmp -s "$scratch/apart/unit.log" "$golden/healthy_run.in" ||
    fail "$what: status $status, $(cat "$scratch/err")"
}
apart "one file spelt two ways" "two outputs go to ./same" --json=same --html=./same unit.log
apart "two outputs to standard output" "two outputs go to standard output" --json=- --html=- unit.log
apart "an output that is an input" "the output ./unit.log is also an input" --junit=./unit.log unit.log
ln "$scratch/apart/unit.log" "$scratch/unit.link"
apart "an output that is an input by another name" "the output ../unit.link is also an input" --junit=../unit.link unit.log
# A signal while a unit still arrives on a pipe: the outputs' new files,
# beside them in their folder, are removed, and no output takes their place.
mkdir "$scratch/signalled"
mkfifo "$scratch/arriving"
(cd "$scratch/signalled" && exec "$report" --json=unit.json --junit=unit.xml) <"$scratch/arriving" >/dev/null 2>&1 &
reading=$!
exec 5>"$scratch/arriving"
head -n 40 "$golden/healthy_run.in" >&5
for _ in $(seq 200); do
  [ "$(ls -A "$scratch/signalled" | grep -c '^\.unit\.')" = 2 ] && break
  sleep 0.05
done
new_files=$(ls -A "$scratch/signalled")
kill -TERM $reading
wait $reading
status=$?
exec 5>&-
[ $status -eq 143 ] && [ "$(echo $new_files)" != "" ] && [ -z "$(ls -A "$scratch/signalled")" ] ||
  fail "a signal while writing: status $status, new files: $new_files; left: $(ls -A "$scratch/signalled")"
# A one-letter host name is the host's name as it stands.
if [ "$(id -u)" = 0 ] && unshare --uts true 2>/dev/null; then
  unshare --uts sh -c 'hostname q && exec "$1" --json=- <"$2"' sh "$report" "$golden/healthy_run.in" 2>/dev/null |
    /usr/bin/python3 -c 'import json, sys; assert json.load(sys.stdin)["units"][0]["context"]["hostname"] == "q"' ||
    fail "a one-letter host name"
fi
# A FIFO (like a device) is written as it is, not replaced. Not /dev/null:
# a program that replaced it would wreck the machine's.
mkfifo "$scratch/fifo.xml"
timeout 20 cat "$scratch/fifo.xml" >"$scratch/from-fifo.xml" &
reader=$!
timeout 20 "$report" --junit="$scratch/fifo.xml" <"$golden/healthy_run.in" >/dev/null 2>"$scratch/err"
status=$?
[ $status -eq 0 ] || timeout 5 sh -c ': >"$1"' sh "$scratch/fifo.xml"  # lets the reader go
wait $reader
[ $status -eq 0 ] && [ -p "$scratch/fifo.xml" ] && xmllint --noout "$scratch/from-fifo.xml" 2>/dev/null ||
  fail "a FIFO as an output: $(cat "$scratch/err")"
"$report" --json="$scratch/kept.json" <"$golden/healthy_run.in" >/dev/null 2>&1
cp "$scratch/kept.json" "$scratch/kept.before"
(ulimit -f 8; exec "$report" --json="$scratch/kept.json" <"$golden/stuck_led.in") >/dev/null 2>"$scratch/err"
status=$?
[ $status -eq 2 ] || fail "a file-size limit: status $status, expected 2"
cmp -s "$scratch/kept.json" "$scratch/kept.before" || fail "a file-size limit left a changed file"
[ -z "$(find "$scratch" -name '.kept.json.*')" ] || fail "a file-size limit left its scratch file"

# A shift's page: a table of every unit first; the first units built at
# once, the others built and drawn only when they come into view.
mkdir "$scratch/shift"
for i in $(seq 1 40); do ln -s "$golden/healthy_run.in" "$scratch/shift/unit$i.log"; done
"$report" --html="$scratch/shift.html" "$scratch/shift"/unit*.log >/dev/null 2>&1 || fail "a shift of 40 units"
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
  --disable-component-update --disable-sync --user-data-dir="$scratch/browser" \
  --dump-dom "file://$scratch/shift.html" >"$scratch/shift-dom.html" 2>/dev/null
/usr/bin/python3 - "$scratch/shift-dom.html" <<'PY' || fail "a shift's page is not built as it is looked at"
import re, sys
dom = open(sys.argv[1]).read()
table = dom[dom.index('<table class="list" id="units">'):]
assert table[:table.index("</table>")].count('<a href="#unit-') == 40
sections = dom.split('<section class="unit"')[1:]
built = ['class="unit-detail"' not in section for section in sections]
assert built[:3] == [True] * 3 and not any(built[3:]), built
assert all("<canvas" in section for section in sections[:3]) and not any("<canvas" in s for s in sections[3:])
PY

[ $failures -eq 0 ] && echo "report files: all checks passed"
exit $((failures > 0))
