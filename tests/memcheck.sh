#!/usr/bin/env bash
# Runs every golden session and the prompt walk under valgrind memcheck, in
# the unsanitized build folder given: each must show no leak (definite or
# indirect) and no memory error, and each session must still print its
# transcript. Prints one line per run and a total.
#
#   tests/memcheck.sh BUILD_DIR
set -u
build=${1:?usage: tests/memcheck.sh BUILD_DIR}
here=$(cd "$(dirname "$0")" && pwd)
valgrind=(valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite,indirect --error-exitcode=99)

failed=0
runs=0
check() {  # name, status, expected output file, actual output file
  runs=$((runs + 1))
  if [ "$2" = 99 ]; then
    echo "memcheck: $1: leaks or memory errors (see above)"
    failed=$((failed + 1))
  elif [ "$2" != 0 ] || { [ -n "$3" ] && ! cmp -s "$3" "$4"; }; then
    echo "memcheck: $1: status $2 or a transcript that differs"
    failed=$((failed + 1))
  else
    echo "memcheck: $1: clean"
  fi
}

actual=$(mktemp)
work=$(mktemp -d)
trap 'rm -rf "$actual" "$work"' EXIT
# The golden sessions through their own runner, the program under valgrind.
for dir in cases instant; do
  bin=$build/q7cal
  [ $dir = instant ] && bin=$build/q7cal_instant
  printf '#!/bin/sh\nexec %s "%s" "$@"\n' "${valgrind[*]}" "$(cd "$(dirname "$bin")" && pwd)/$(basename "$bin")" >"$work/$dir"
  chmod +x "$work/$dir"
  for input in "$here"/golden/$dir/*.in; do
    [ -e "$input" ] || continue
    case=${input%.in}
    menus=""
    [ "$(basename "$case")" = menu_navigation ] && menus=--with-menus
    "$here/golden/run_transcript.sh" $menus "$work/$dir" "$case" >"$actual"
    status=$?
    grep -q 'exit status 99,' "$actual" && status=99
    cat "$actual"
    check "golden/$dir/$(basename "$case")" $status "" ""
  done
done

"${valgrind[@]}" "$build/q7cal_tests" --gtest_filter='*EveryPrompt*' --gtest_brief=1 >"$actual"
status=$?
tail -n 3 "$actual"
check "prompt walk" $status "" ""

echo "memcheck: $runs runs, $failed with leaks, memory errors or wrong output"
[ $failed -eq 0 ]
