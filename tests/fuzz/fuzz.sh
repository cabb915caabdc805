#!/bin/sh
# Runs the session fuzzer built in BUILD (make fuzz) for SECONDS in JOBS
# parallel jobs, then prints the sessions run and any finding; fails on one.
# Seeds: the corpus kept here, and the golden sessions' answers (comments
# left out) and the past regressions under a first line of zeros (the first
# call of the faults' operations fails; no stop). New inputs collect in
# BUILD/corpus, each job's log in BUILD/logs, and the input of a finding in
# BUILD (a crash-* file): once the fault is fixed, copy it into
# tests/fuzz/corpus.
# usage: tests/fuzz/fuzz.sh BUILD SECONDS JOBS
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
seconds=$2
jobs=$3

rm -rf "$build/seeds" "$build/logs"
mkdir -p "$build/seeds" "$build/logs" "$build/corpus"
cp "$here"/corpus/* "$build/seeds/"
for input in "$here"/../golden/cases/*.in "$here"/../golden/instant/*.in; do
    { echo '0 0 0 0 0 0'; "$here"/../golden/answers.sh "$input"; } >"$build/seeds/plain_$(basename "$input")"
done
for input in "$here"/regressions/*; do
    { echo '0 0 0 0 0 0'; cat "$input"; } >"$build/seeds/plain_$(basename "$input")"
done

echo "q7cal_fuzz: $jobs job(s) for $seconds s; logs in $build/logs" >&2
start=$(date +%s)
(cd "$build/logs" && "$build/q7cal_fuzz" -jobs="$jobs" -workers="$jobs" -max_total_time="$seconds" -timeout=10 \
    -print_final_stats=1 -artifact_prefix="$build/" "$build/corpus" "$build/seeds" >fuzz.log 2>&1) || true
elapsed=$(($(date +%s) - start))

# libFuzzer's final count of each job's sessions, and the fuzzer's own of
# those faulted, which a job cut short by a finding does not print.
sessions=0
faulted=0
findings=0
for log in "$build"/logs/fuzz-*.log; do
    [ -e "$log" ] || { cat "$build/logs/fuzz.log" >&2; exit 1; }
    count=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    sessions=$((sessions + ${count:-0}))
    count=$(sed -n 's/^q7cal_fuzz: [0-9]* sessions, \([0-9]*\) of them faulted$/\1/p' "$log" | tail -n 1)
    faulted=$((faulted + ${count:-0}))
    if grep -q -e '^FINDING: ' -e 'ERROR: libFuzzer' -e 'ERROR: AddressSanitizer' -e 'runtime error: ' "$log"; then
        findings=$((findings + 1))
        echo "--- a finding, in $log:" >&2
        sed -n -e '/^FINDING: \|ERROR: libFuzzer\|ERROR: AddressSanitizer\|runtime error: /,$p' "$log" | head -n 100 >&2
    fi
done
[ "$elapsed" -gt 0 ] || elapsed=1
faulted_text="$faulted of them faulted"
[ "$findings" -eq 0 ] || faulted_text="$faulted faulted in the jobs that ran their time"
echo "q7cal_fuzz: $sessions sessions in $elapsed s ($((sessions / elapsed)) a second), $faulted_text," \
     "$findings finding(s)"
[ "$findings" -eq 0 ]
