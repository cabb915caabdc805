#!/usr/bin/env bash
# make bench: the Release build's start-up and sleep figures, measured side by
# side with a small C tool in one run, printed as one table. Each row is one
# function; runs alternate between q7cal and its reference, and every figure
# is the median of RUNS runs. The start-up goals are the program's own: q7cal
# beside a Cal API that does nothing (build/stub/, made from the header), as on
# a host where the maker's library replaces the simulated device.
set -euo pipefail
cd "$(dirname "$0")/.."

RUNS=15
Q7CAL=build/q7cal
CPU_TIME=build/bench_cpu_time
GOAL_RATIO=1.5

# The reference tool and GNU time, from Debian's packages: named, not installed.
scripts/check-tools.sh bench >&2 || exit 1
I2CGET=$(command -v i2cget)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf -- '-1\n' >"$work/exit"
# The program as it runs on a unit: a copy beside the Cal API stub.
mkdir "$work/own"
cp "$Q7CAL" build/stub/libQ7_LocalCalAPI.so "$work/own/"
OWN_Q7CAL=$work/own/q7cal

median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
# "met" or "NOT met" for: figure <= limit.
verdict() { awk -v a="$1" -v b="$2" 'BEGIN { print (a <= b) ? "met" : "NOT met" }'; }
row() { printf '%-38s %6s   %-22s %s\n' "$@"; }

# One run's CPU time (ms) or peak RSS (KiB): INPUT-FILE COMMAND [ARGUMENT...].
cpu_ms() { "$CPU_TIME" "$@"; }
peak_kib() {
  local input=$1
  shift
  /usr/bin/time -f %M "$@" <"$input" 2>&1 >/dev/null | tail -n 1
}

# Start at the main menu and exit ("-1") of PROGRAM, alternating with
# `i2cget -V`, under MEASURE (cpu_ms or peak_kib); sets q7 and ref to the two
# medians.
side_by_side() {
  local measure=$1 program=$2 i
  : >"$work/q7"
  : >"$work/ref"
  for ((i = 0; i < RUNS; i++)); do
    "$measure" "$work/exit" "$program" >>"$work/q7"
    "$measure" /dev/null "$I2CGET" -V >>"$work/ref"
  done
  q7=$(median <"$work/q7")
  ref=$(median <"$work/ref")
}

# A start-up row: LABEL MEASURE; the program's own figure against the goal,
# then the same start with the simulated device, without one.
start_exit() {
  local label=$1 measure=$2 q7 ref ratio
  side_by_side "$measure" "$OWN_Q7CAL"
  ratio=$(awk -v a="$q7" -v b="$ref" 'BEGIN { printf "%.2f", a / b }')
  row "Start+exit $label" "$q7" "i2cget -V: $ref" "<= ${GOAL_RATIO}x: $(verdict "$ratio" "$GOAL_RATIO") (${ratio}x)"
  side_by_side "$measure" "$Q7CAL"
  row "  with the simulated device" "$q7" "i2cget -V: $ref" "-"
}

# The menu answers that reach a command: its group's number and its own,
# read from the program's menus, so that new rows never break the bench.
menu_path() {
  local group item
  group=$("$Q7CAL" <"$work/exit" | sed -n "s|^ *\([0-9]*\)\. $1\$|\1|p")
  item=$(printf '%s\n-1\n' "$group" | "$Q7CAL" | sed -n "s|^ *\([0-9]*\)\. $2\$|\1|p")
  printf '%s\n%s\n' "$group" "$item"
}

# The program's "Sleep function accuracy test": the mean excess over the
# requested 5, 10, 15 and 20 ms (200 sleeps each) per run.
sleep_excess() {
  local i
  { menu_path "Test Commands" "Sleep function accuracy test"; printf -- '-1\n-1\n'; } >"$work/sleep.in"
  for ((i = 0; i < RUNS; i++)); do
    "$Q7CAL" <"$work/sleep.in" |
      awk '/^Actual .* Nominal = / && $7 > 0 { sum += $(NF - 1); n++ } END { printf "%.3f\n", sum / n }' >>"$work/sleep"
  done
  row "Sleep test mean excess (ms)" "$(median <"$work/sleep")" "requested sleep" "-"
}

# A Flash 2.x write of the whole 64 KB image (63 kB of data from offset 0, the
# header block) with an auto key, verified and restored: CPU time of the run,
# beside start+exit alone.
flash2x_write_cpu() {
  local i
  { menu_path "DSD Read/Write Commands" "WriteFlash2xBytesWithHeader"
    printf '0\n64512\n1\n63\n10\n1\n1\n3\nC3\n1\n-1\n-1\n'; } >"$work/flash2x.in"
  grep -q "^0 verify errors.$" <("$Q7CAL" <"$work/flash2x.in") || { echo "bench: the Flash 2.x write did not verify" >&2; exit 1; }
  : >"$work/flash2x"
  : >"$work/idle"
  for ((i = 0; i < RUNS; i++)); do
    cpu_ms "$work/flash2x.in" "$Q7CAL" >>"$work/flash2x"
    cpu_ms "$work/exit" "$Q7CAL" >>"$work/idle"
  done
  row "Flash 2.x 64 KB write CPU (ms)" "$(median <"$work/flash2x")" "start+exit: $(median <"$work/idle")" "-"
}

# A whole "Automated test" run, every pause answered: its wall time against
# the sum of its mandated sleeps (3 x 500 ms after the band settings, 2 x 500
# ms after the Tx attenuators, 4 x 100 ms after RFIC register 30 writes).
AUTOMATED_SLEEPS_MS=2900
automated_run_wall() {
  local i start end ms
  { menu_path "Test Commands" "Automated test"; printf '\n\n\n\n\n\n1\n\n\n-1\n-1\n'; } >"$work/automated.in"
  grep -q "^Pop\[ 0\]" <("$Q7CAL" <"$work/automated.in") || { echo "bench: the automated run did not end" >&2; exit 1; }
  : >"$work/automated"
  for ((i = 0; i < RUNS; i++)); do
    start=$(date +%s%N)
    "$Q7CAL" <"$work/automated.in" >/dev/null
    end=$(date +%s%N)
    echo $(((end - start) / 1000000)) >>"$work/automated"
  done
  ms=$(median <"$work/automated")
  row "Automated run wall time (ms)" "$ms" "sleeps: $AUTOMATED_SLEEPS_MS" \
    "<= +2%: $(verdict "$ms" "$((AUTOMATED_SLEEPS_MS * 102 / 100))")"
}

# ---- q7cal-report's history ----
REPORT=build/q7cal-report
GOLDEN=tests/golden/report
HISTORY_UNITS=100000
HISTORY_GOAL_MS=200
now_ms() { echo $(($(date +%s%N) / 1000000)); }

# Appending a unit against judging it: q7cal-report on one transcript with
# and without --db; the difference is the append. The bench's records wait
# in a spool of its own, never behind the user's. LABEL DATABASE.
history_append() {
  local i start
  : >"$work/judge"
  : >"$work/append"
  for ((i = 0; i < RUNS; i++)); do
    start=$(now_ms)
    "$REPORT" "$GOLDEN/healthy_run.in" >/dev/null
    echo $(($(now_ms) - start)) >>"$work/judge"
    start=$(now_ms)
    "$REPORT" --db="$2" --spool="$work/spool" --unit="A$i" "$GOLDEN/healthy_run.in" >/dev/null
    echo $(($(now_ms) - start)) >>"$work/append"
  done
  local judge append cost
  judge=$(median <"$work/judge")
  append=$(median <"$work/append")
  cost=$(awk -v a="$append" -v j="$judge" 'BEGIN { c = a - j; printf "%.1f", (c > 0.1 ? c : 0.1) }')
  row "History append, $1 (units/s)" "$(awk -v c="$cost" 'BEGIN { printf "%.0f", 1000 / c }')" \
    "judging: $judge ms/unit" "append $cost ms < judging: $(verdict "$cost" "$judge")"
}

# The statements that make 100,000 units of the first 100: each copied with
# a unit name of its own, its checks and its measurements with it.
replicate_units() {
  local copies=$((HISTORY_UNITS / 100 - 1))
  cat <<SQL
WITH RECURSIVE k(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM k WHERE n < $copies)
INSERT INTO runs (id, unit, unit_id, mac_address, simulated, station, operator, hostname, source, started,
                  seconds, passed, report_version, identity)
SELECT r.id + k.n * 100, r.unit || '-' || k.n, r.unit_id, r.mac_address, r.simulated, r.station, r.operator,
       r.hostname, r.source, r.started, r.seconds, r.passed, r.report_version, r.identity
FROM runs r, k WHERE r.id <= 100;
WITH RECURSIVE k(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM k WHERE n < $copies)
INSERT INTO checks (run_id, position, class, name, passed, expected_error, type, message, line, at_seconds, seconds)
SELECT c.run_id + k.n * 100, c.position, c.class, c.name, c.passed, c.expected_error, c.type, c.message, c.line,
       c.at_seconds, c.seconds
FROM checks c, k WHERE c.run_id <= 100;
WITH RECURSIVE k(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM k WHERE n < $copies)
INSERT INTO measurements (run_id, position, name, quantity, class, command, unit, value, array_values, low, high,
                          passed, line)
SELECT m.run_id + k.n * 100, m.position, m.name, m.quantity, m.class, m.command, m.unit, m.value, m.array_values,
       m.low, m.high, m.passed, m.line
FROM measurements m, k WHERE m.run_id <= 100;
SQL
}

# The yield query over 100,000 stored units: 100 appended (four kinds of
# unit, five stations, 30 days, a tenth tested twice), then copied. LABEL
# DATABASE RUN-SQL-COMMAND.
history_query() {
  local label=$1 database=$2 run_sql=$3 i n=0 start kinds=(healthy_run corrupted_store hot_unit stuck_led)
  for ((i = 0; i < 100; i++)); do
    cp "$GOLDEN/${kinds[i % 4]}.in" "$work/unit.log"
    touch -d "2026-10-$(printf %02d $((1 + i % 30)))T10:00:00Z" "$work/unit.log"
    # A failing unit is judged so (status 1), and kept all the same.
    "$REPORT" --db="$database" --spool="$work/spool" --unit="U$((i - i / 10))" --station="ST$((i % 5))" \
      "$work/unit.log" >/dev/null 2>&1 || [ $? -eq 1 ] || { echo "bench: U$i was not appended to $database" >&2; exit 1; }
  done
  replicate_units | $run_sql
  : >"$work/query"
  for ((i = 0; i < RUNS; i++)); do
    start=$(now_ms)
    "$REPORT" --history --db="$database" >/dev/null
    echo $(($(now_ms) - start)) >>"$work/query"
  done
  local ms
  ms=$(median <"$work/query")
  row "History yield query, $label (ms)" "$ms" "$HISTORY_UNITS units" \
    "< $HISTORY_GOAL_MS ms: $(verdict "$ms" "$((HISTORY_GOAL_MS - 1))")"
}

# A server's autovacuum keeps a history that grows unit by unit vacuumed and
# analysed; after the copy, in one go, it is done at once.
postgres_script() { psql -q -v ON_ERROR_STOP=1 "$1" && psql -q "$1" -c "VACUUM ANALYZE"; }
sqlite_script() { /usr/bin/python3 -c 'import sqlite3, sys; db = sqlite3.connect(sys.argv[1]); db.executescript(sys.stdin.read()); db.commit()' "$1"; }

history_rows() {
  history_append "SQLite" "$work/append.db"
  history_query "SQLite" "$work/query.db" "sqlite_script $work/query.db"
  local uri
  if ! uri=$(scripts/scratch-postgres.sh start "$work/pg"); then
    row "History, PostgreSQL" "-" "not installed" "-"
    return
  fi
  trap 'scripts/scratch-postgres.sh stop "$work/pg"; rm -rf "$work"' EXIT
  history_append "PostgreSQL" "$uri"
  psql -q "$uri" -c "CREATE DATABASE query"
  history_query "PostgreSQL" "${uri%/q7cal}/query" "postgres_script ${uri%/q7cal}/query"
}

# q7cal-report judges a batch unit by unit, writing every file as it goes:
# its peak memory for a thousand units stays within a few MiB of one unit's.
REPORT_BATCH=1000
REPORT_MEMORY_GOAL_KIB=4096
report_memory() {
  mkdir -p "$work/batch"
  local i
  for ((i = 0; i < REPORT_BATCH; i++)); do
    ln -sf "$PWD/$GOLDEN/healthy_run.in" "$work/batch/unit$i.log"
  done
  batch_kib() {
    /usr/bin/time -f %M "$REPORT" --json="$work/batch.json" --junit="$work/batch.xml" --html="$work/batch.html" \
      "$@" 2>&1 >/dev/null | tail -n 1
  }
  local one many
  one=$(batch_kib "$work/batch/unit0.log")
  many=$(batch_kib "$work/batch"/unit*.log)
  row "q7cal-report peak RSS, 1 unit (KiB)" "$one" "-" "-"
  row "q7cal-report peak RSS, $REPORT_BATCH units" "$many" "-" \
    "< 1 unit + $REPORT_MEMORY_GOAL_KIB KiB: $(verdict "$many" "$((one + REPORT_MEMORY_GOAL_KIB))")"
  # The page of the thousand units, opened in headless Chromium: the time
  # from navigation to its load event, inside a frame of a page that keeps it.
  if command -v chromium >/dev/null; then
    printf '%s\n' '<!DOCTYPE html><title>-</title><script>const t0 = performance.now();</script>' \
      '<iframe src="batch.html" width="1280" height="900"' \
      ' onload="document.title = Math.round(performance.now() - t0)"></iframe>' >"$work/open.html"
    : >"$work/open"
    for ((i = 0; i < 5; i++)); do
      chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
        --disable-component-update --disable-sync --allow-file-access-from-files --user-data-dir="$work/browser" \
        --dump-dom "file://$work/open.html" 2>/dev/null | sed -n 's|.*<title>\([0-9]*\)</title>.*|\1|p' >>"$work/open"
    done
    local ms
    ms=$(median <"$work/open")
    row "q7cal-report page, $REPORT_BATCH units (ms)" "$ms" "headless Chromium" "< 3000 ms: $(verdict "$ms" 2999)"
  fi
  rm -f "$work/batch.json" "$work/batch.xml" "$work/batch.html"
}

echo "q7cal bench: Release build, $(nproc) cores, medians of $RUNS runs"
row "Measure" "q7cal" "Reference" "Goal"
start_exit "CPU (ms)" cpu_ms
start_exit "peak RSS (KiB)" peak_kib
sleep_excess
flash2x_write_cpu
automated_run_wall
report_memory
history_rows
