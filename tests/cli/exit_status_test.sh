#!/usr/bin/env bash
# How a whole session ends, by its exit status: 3 when input ends inside a
# command; 4 when standard output cannot be written (/dev/full, a closed
# stdout that the device library's channel must not take over, a pipe whose
# reader has gone, a file-size limit); 128 + N after stop signal N, taken at
# the menu and inside a command, both through the normal exit, and while a
# write to a slow reader is blocked, with nothing of the output lost. Input
# that never ends a line ends, and so does one that cannot be read; a
# non-blocking input is waited on.
# Usage: exit_status_test.sh PROGRAM
set -u
program=$1
failures=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "$*"; failures=$((failures + 1)); }
expect_status() { [ "$2" -eq "$3" ] || fail "$1: exit status $3, expected $2"; }

printf '1\n4\n' >"$work/cut"
"$program" <"$work/cut" >/dev/null
expect_status "input ending at a prompt of Set device mode" 3 $?

printf -- '-1\n' >"$work/exit"
"$program" <"$work/exit" >/dev/full 2>"$work/err"
expect_status "standard output on /dev/full" 4 $?
grep -q '^q7cal: write error on standard output: ' "$work/err" || fail "/dev/full: no write error on stderr"
# Closed, standard input and output would be the next descriptors that the
# device library opens for its channel, and the dialogue would go there.
"$program" <&- >&- 2>/dev/null
expect_status "standard input and output closed" 4 $?

# Far more output than a pipe holds, to a reader that leaves after one byte.
for _ in $(seq 1000); do printf '1\n-1\n'; done >"$work/menus"
"$program" <"$work/menus" 2>/dev/null | head -c 1 >/dev/null
expect_status "a pipe closed by its reader" 4 "${PIPESTATUS[0]}"
bash -c 'ulimit -f 1; exec "$0"' "$program" <"$work/menus" >"$work/out" 2>"$work/err"
expect_status "standard output over a file-size limit" 4 $?
grep -q '^q7cal: write error on standard output: File too large$' "$work/err" ||
  fail "a file-size limit: no write error on stderr: $(cat "$work/err")"

# No line end ever: the input ends (the timeout only stops a program that spins).
timeout 60 "$program" </dev/zero >/dev/null
expect_status "endless input without a line end" 0 $?

# An input that cannot be read (a directory: EISDIR) ends as the end of input does.
timeout 60 "$program" </ >/dev/null
expect_status "a directory as input" 0 $?

# A non-blocking pipe, written to only once the menu waits: EAGAIN is no end.
rm -f "$work/fifo"
mkfifo "$work/fifo"
exec 3<>"$work/fifo" 4<"$work/fifo"
/usr/bin/python3 -c 'import fcntl, os; fcntl.fcntl(4, fcntl.F_SETFL, fcntl.fcntl(4, fcntl.F_GETFL) | os.O_NONBLOCK)'
"$program" <&4 >"$work/out" 3>&- 4>&- &
pid=$!
exec 4<&-
for _ in $(seq 200); do
  [ "$(tail -c 15 "$work/out" 2>/dev/null)" = "ENTER OPTION : " ] && break
  sleep 0.05
done
printf '1\n5\n-1\n-1\n' >&3
exec 3>&-
wait $pid
expect_status "a non-blocking input" 0 $?
grep -q '^GetBandConfig was SUCCESSFUL.$' "$work/out" || fail "a non-blocking input: the answers were not read"

# Types ANSWERS, waits until the output ends with WAIT_FOR (the prompt being
# asked) and sends SIGNAL (TERM when not given); sets signal_status.
signal_session() {
  local answers=$1 wait_for=$2 signal=${3:-TERM}
  rm -f "$work/fifo" "$work/out"
  mkfifo "$work/fifo"
  "$program" <"$work/fifo" >"$work/out" &
  local pid=$!
  exec 3>"$work/fifo"
  printf '%b' "$answers" >&3
  for _ in $(seq 200); do
    [ "$(tail -c ${#wait_for} "$work/out" 2>/dev/null)" = "$wait_for" ] && break
    sleep 0.05
  done
  kill -"$signal" $pid
  wait $pid
  signal_status=$?
  exec 3>&-
}

signal_session "" "ENTER OPTION : "
expect_status "SIGTERM at the main menu" 143 $signal_status
[ "$(tail -n 2 "$work/out")" = "$(printf 'ENTER OPTION : \nClosing application...')" ] ||
  fail "SIGTERM at the main menu: not the normal exit straight away: $(tail -c 200 "$work/out")"

signal_session '1\n4\n' "    DUT Mode        ? "
expect_status "SIGTERM at a prompt of Set device mode" 143 $signal_status
tail -c 100 "$work/out" | grep -q 'Interrupted by SIGTERM: command abandoned.' ||
  fail "SIGTERM inside a command: no abandon line: $(tail -c 200 "$work/out")"

# SIGHUP at the region write's verify question: the data stays written and
# the WARNING says why.
signal_session '7\n9\n5\n1\n10\n' "    Verify write     (1=yes/0=no) ? " HUP
expect_status "SIGHUP after a region write" 129 $signal_status
grep -q '^Interrupted by SIGHUP: command abandoned\.$' "$work/out" &&
  grep -q '^WARNING: Original data not restored, because the session was interrupted\.$' "$work/out" ||
  fail "SIGHUP after a region write: no abandon line or no WARNING with its reason: $(tail -c 300 "$work/out")"

# SIGINT while a write is blocked on a full pipe: the write goes on once the
# reader reads, and every line arrives. The pipe holds one page, so that the
# blocked write has written nothing yet and the signal fails it with EINTR.
spectra=$(printf '5\n9\n3\n1\n'; for _ in $(seq 12); do printf '10\n'; done; printf -- '-1\n-1\n')
rm -f "$work/fifo"
mkfifo "$work/fifo"
exec 3<>"$work/fifo"
/usr/bin/python3 -c 'import fcntl; fcntl.fcntl(3, 1031, 4096)'  # F_SETPIPE_SZ
exec 4<"$work/fifo" 3>&-
printf '%s\n' "$spectra" | env --default-signal=INT "$program" >"$work/fifo" 2>"$work/err" &
pid=$!
for _ in $(seq 200); do
  [ "$(cat /proc/$pid/wchan 2>/dev/null)" = pipe_write ] && break
  sleep 0.05
done
kill -INT $pid
cat <&4 >"$work/out"
exec 4<&-
wait $pid
expect_status "SIGINT while a write is blocked" 130 $?
[ -s "$work/err" ] && fail "SIGINT while a write is blocked: stderr says $(cat "$work/err")"
[ "$(tail -n 1 "$work/out")" = "Closing application..." ] || fail "SIGINT while a write is blocked: output lost"
[ "$(grep -c '^GetRxSpectrum was SUCCESSFUL.$' "$work/out")" -ge 1 ] || fail "SIGINT while a write is blocked: no spectrum"

[ "$failures" -eq 0 ] && echo "exit statuses: all checks passed"
exit $((failures > 0))
