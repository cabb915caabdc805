"""q7cal at a terminal, typed at through a pseudo-terminal: Ctrl-C inside a
command abandons only that command and the group menu carries on; the up
arrow recalls an earlier answer and an escape sequence is never taken as an
answer; Ctrl-C at a menu leaves with status 130.
Usage: terminal_test.py PROGRAM"""
import os
import pty
import select
import sys
import time

program = sys.argv[1]
pid, terminal = pty.fork()
if pid == 0:
    os.environ["TERM"] = "xterm"
    os.execv(program, [program])

seen = b""


def wait_for(text, timeout=20.0):
    """Reads what the program shows until `text` has appeared in it since the
    last wait; fails the test after `timeout` seconds."""
    global seen
    deadline = time.time() + timeout
    while text.encode() not in seen:
        ready, _, _ = select.select([terminal], [], [], max(0.0, deadline - time.time()))
        if not ready:
            sys.exit("FAIL: waited for %r; the terminal shows:\n%s" % (text, seen[-1500:].decode(errors="replace")))
        try:
            seen += os.read(terminal, 4096)
        except OSError:
            sys.exit("FAIL: the program ended while %r was awaited:\n%s" % (text, seen[-1500:].decode(errors="replace")))
    shown = seen.decode(errors="replace")
    seen = seen[seen.index(text.encode()) + len(text):]
    return shown


def type_keys(keys):
    os.write(terminal, keys.encode())


wait_for("ENTER OPTION : ")
type_keys("1\r")  # Configuration Commands
wait_for("ENTER OPTION : ")
type_keys("4\r")  # Set device mode: Ctrl-C at its first prompt
wait_for("DUT Mode        ? ")
type_keys("\x03")
shown = wait_for("ENTER OPTION : ")
if "Interrupted: command abandoned." not in shown or "******** Configuration Commands ********" not in shown:
    sys.exit("FAIL: Ctrl-C inside a command did not bring the group menu back:\n" + shown)

# An empty line is no answer and no end of input; an answer recalled with
# the up arrow runs the command again; the arrows that have nothing to move
# to are no answers.
type_keys("\r5\r")  # an empty line, then Get band configuration
wait_for("GetBandConfig was SUCCESSFUL.")
wait_for("ENTER OPTION : ")
type_keys("\x1b[B\x1b[C\x1b[A\r")
shown = wait_for("GetBandConfig was SUCCESSFUL.")
if "Sorry. Invalid option selected." in shown or "GetBandConfig:" not in shown:
    sys.exit("FAIL: the up arrow did not recall the answer 5:\n" + shown)
wait_for("ENTER OPTION : ")

# Ctrl-C at a menu leaves through the normal exit.
type_keys("\x03")
wait_for("Closing application...")
_, status = os.waitpid(pid, 0)
if not os.WIFEXITED(status) or os.WEXITSTATUS(status) != 130:
    sys.exit("FAIL: Ctrl-C at a menu: status %r, expected 130" % status)
print("terminal: all checks passed")
