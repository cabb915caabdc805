#!/usr/bin/env bash
# make bench: the Release build's start-up and sleep figures, measured side by
# side with a small C tool in one run, printed as one table. Each row is one
# function; runs alternate between q7cal and its reference, and every figure
# is the median of RUNS runs.
set -euo pipefail
cd "$(dirname "$0")/.."

RUNS=15
Q7CAL=build/q7cal
CPU_TIME=build/bench_cpu_time
RSS_GOAL_KIB=2048
CPU_GOAL_RATIO=2

# The reference tool and GNU time come from Debian's packages.
missing=()
command -v i2cget >/dev/null 2>&1 || missing+=(i2c-tools)
[ -x /usr/bin/time ] || missing+=(time)
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing for the bench: ${missing[*]}" >&2
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >&2 ||
    { echo "make bench needs: apt-get install -y ${missing[*]}" >&2; exit 1; }
fi
I2CGET=$(command -v i2cget)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf -- '-1\n' >"$work/exit"

median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
# "met" or "NOT met" for: figure <= limit.
verdict() { awk -v a="$1" -v b="$2" 'BEGIN { print (a <= b) ? "met" : "NOT met" }'; }
row() { printf '%-34s %10s   %-22s %s\n' "$@"; }

# One run's CPU time (ms) or peak RSS (KiB): INPUT-FILE COMMAND [ARGUMENT...].
cpu_ms() { "$CPU_TIME" "$@"; }
peak_kib() {
  local input=$1
  shift
  /usr/bin/time -f %M "$@" <"$input" 2>&1 >/dev/null | tail -n 1
}

# Start at the main menu and exit ("-1"), alternating with `i2cget -V`, under
# MEASURE (cpu_ms or peak_kib); sets q7 and ref to the two medians.
side_by_side() {
  local measure=$1 i
  : >"$work/q7"
  : >"$work/ref"
  for ((i = 0; i < RUNS; i++)); do
    "$measure" "$work/exit" "$Q7CAL" >>"$work/q7"
    "$measure" /dev/null "$I2CGET" -V >>"$work/ref"
  done
  q7=$(median <"$work/q7")
  ref=$(median <"$work/ref")
}

start_exit_cpu() {
  local q7 ref ratio
  side_by_side cpu_ms
  ratio=$(awk -v a="$q7" -v b="$ref" 'BEGIN { printf "%.2f", a / b }')
  row "Start+exit CPU (ms)" "$q7" "i2cget -V: $ref" \
    "<= ${CPU_GOAL_RATIO}x: $(verdict "$ratio" "$CPU_GOAL_RATIO") (${ratio}x)"
}

start_exit_rss() {
  local q7 ref
  side_by_side peak_kib
  row "Start+exit peak RSS (KiB)" "$q7" "i2cget -V: $ref" "<= $RSS_GOAL_KIB: $(verdict "$q7" "$RSS_GOAL_KIB")"
}

# The program's "Sleep function accuracy test" row, found in its menus: the
# mean excess over the requested 5, 10, 15 and 20 ms (200 sleeps each) per run.
sleep_excess() {
  local group item i
  group=$("$Q7CAL" <"$work/exit" | sed -n 's/^ *\([0-9]*\)\. Test Commands$/\1/p')
  item=$(printf '%s\n-1\n' "$group" | "$Q7CAL" | sed -n 's/^ *\([0-9]*\)\. Sleep function accuracy test$/\1/p')
  for ((i = 0; i < RUNS; i++)); do
    printf '%s\n%s\n-1\n-1\n' "$group" "$item" | "$Q7CAL" |
      awk '/^Actual .* Nominal = / && $7 > 0 { sum += $(NF - 1); n++ } END { printf "%.3f\n", sum / n }' >>"$work/sleep"
  done
  row "Sleep test mean excess (ms)" "$(median <"$work/sleep")" "requested sleep" "-"
}

echo "q7cal bench: Release build, $(nproc) cores, medians of $RUNS runs"
row "Measure" "q7cal" "Reference" "Goal"
start_exit_cpu
start_exit_rss
sleep_excess
