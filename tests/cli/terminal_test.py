"""q7cal at a terminal, typed at through a pseudo-terminal as an engineer
would, directly and from an interactive bash with job control:
- Ctrl-C inside a command abandons only that command and the group menu
  carries on (a region write's WARNING says the command was interrupted);
  Ctrl-C at a menu leaves with status 130;
- what Enter sends is what the screen shows: backspace and the left arrow
  mend a line; the up arrow recalls an earlier answer, to be edited too; an
  unbound key (F5) leaves nothing in the line; a Unicode minus, a no-break
  space and full-width digits are refused and asked again, never dropped;
  words typed ahead do not answer a pause, nor the rest of a line typed at
  one the question after it;
- Ctrl-\\ (SIGQUIT) finishes the command's restore, leaves with 131 and the
  terminal as it was found;
- after Ctrl-Z and fg the prompt and the line are redrawn; a stopped session
  ended by kill %1 makes its restore in the background without stopping again;
- with standard output a pipe, a reader that goes away while an answer is
  awaited ends the session at once with status 4.
Usage: terminal_test.py PROGRAM"""
import os
import pty
import select
import subprocess
import sys
import termios
import time

program = sys.argv[1]


def fail(message, shown=b""):
    sys.exit("FAIL: %s\n%s" % (message, shown[-1500:].decode(errors="replace")))


class Terminal:
    """A program started on a pseudo-terminal of its own."""

    def __init__(self, argv, env=None):
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.environ["TERM"] = "xterm"
            os.environ.update(env or {})
            os.execv(argv[0], argv)
        self.seen = b""

    def wait_for(self, text, timeout=20.0):
        """Reads what the terminal shows until `text` has appeared since the
        last wait, and returns what it shows up to there."""
        deadline = time.time() + timeout
        while text.encode() not in self.seen:
            ready, _, _ = select.select([self.fd], [], [], max(0.0, deadline - time.time()))
            if not ready:
                fail("waited for %r; the terminal shows:" % text, self.seen)
            try:
                self.seen += os.read(self.fd, 4096)
            except OSError:
                fail("the program ended while %r was awaited:" % text, self.seen)
        end = self.seen.index(text.encode()) + len(text)
        shown, self.seen = self.seen[:end], self.seen[end:]
        return shown.decode(errors="replace")

    def prompt(self, line, keys):
        """Types `keys` once the line editor has drawn the prompt `line`."""
        self.wait_for("\r" + line)
        self.type(keys)

    def type(self, keys):
        os.write(self.fd, keys.encode())

    def exit_status(self):
        _, status = os.waitpid(self.pid, 0)
        return os.WEXITSTATUS(status) if os.WIFEXITED(status) else -os.WTERMSIG(status)


MENU = "ENTER OPTION : "
VERIFY = "    Verify write     (1=yes/0=no) ? "
TX_SELECTOR = "0 = current active transmitter  1 = TX1 2 = TX2: "
TX_POWER = "     Tx output power (double, -40 to +35 dBm) ? "
SHELL = "shell$ "
BYTE_WRITE_TO_VERIFY = "7\r7\r100\r4\r1\r1\r1\r"  # WriteDSDBytes at 0x100, 4 random bytes, restore asked

# ---- Ctrl-C, history and the keys that must not change an answer ----------
q7cal = Terminal([program])
q7cal.prompt(MENU, "1\r")  # Configuration Commands
# The editor draws a prompt once, over the one printed; only a session
# brought back (fg) has it drawn again before a key.
shown = q7cal.wait_for("******** Configuration Commands ********")
if MENU in shown:
    fail("the prompt was drawn again before a key was typed:", shown.encode())
q7cal.prompt(MENU, "4\r")  # Set device mode: Ctrl-C at its first prompt
q7cal.prompt("    DUT Mode        ? ", "\x03")
shown = q7cal.wait_for("\r" + MENU)
if "Interrupted: command abandoned." not in shown or "******** Configuration Commands ********" not in shown:
    fail("Ctrl-C inside a command did not bring the group menu back:", shown.encode())

# An empty line is no answer and no end of input; an answer recalled with
# the up arrow runs the command again; the arrows that have nothing to move
# to are no answers.
q7cal.type("\r5\r")  # an empty line, then Get band configuration
q7cal.wait_for("GetBandConfig was SUCCESSFUL.")
q7cal.prompt(MENU, "\x1b[B\x1b[C\x1b[A\r")
shown = q7cal.wait_for("GetBandConfig was SUCCESSFUL.")
if "Sorry. Invalid option selected." in shown or "GetBandConfig:" not in shown:
    fail("the up arrow did not recall the answer 5:", shown.encode())

# 1 and then F5, a key whose sequence has a private parameter ("?"), Alt
# with the up arrow (an Esc before its sequence) and a lone Esc, which the
# editor does not bind: entry 1 (Get Tx attenuator
# settings) runs, not 15, and the bell says the keys did nothing. The Enter
# after the Esc ends the line, not the sequence.
q7cal.prompt(MENU, "-1\r")
q7cal.prompt(MENU, "3\r")
q7cal.prompt(MENU, "1\x1b[15~\x1b[?5~\x1b\x1b[A\x1b\r")
shown = q7cal.wait_for(TX_SELECTOR)
if "\a" not in shown or "5~" in shown:
    fail("F5 was not dropped with the bell:", shown.encode())
q7cal.prompt(TX_SELECTOR, "1\r")

# Set Tx output power: answers that look like -20 or 20 but are not numbers
# are shown as typed (a \U+ code for each character beyond ASCII), refused
# and asked again; then -20, typed with a slip mended (backspace,
# and a 2 put in with the left arrow), reaches the device. The bold 0020 is
# the longest line yet, in four-byte characters: the line's buffer grows to it.
q7cal.prompt(MENU, "4\r")
for lookalike in ("\u221220", "2\u00a00", "\uff12\uff10", "\U0001d7d0\U0001d7ce", "20\u07ff",
                  "\U0001d7ce\U0001d7ce\U0001d7d0\U0001d7ce"):
    q7cal.prompt(TX_POWER, lookalike + "\r")
    shown = q7cal.wait_for("Please enter a number.")
    if "Not a number." not in shown or "SUCCESSFUL" in shown:
        fail("%r was not refused:" % lookalike, shown.encode())
    if "".join(c if c < "\x80" else "\\U+%04X" % ord(c) for c in lookalike) not in shown:
        fail("%r was not shown as typed:" % lookalike, shown.encode())
# The last code point is a character like any other, not a broken sequence.
q7cal.prompt(TX_POWER, "20\U0010ffff\r")
shown = q7cal.wait_for("Please enter a number.")
if "\ufffd" in shown or "\\U+FFFD" in shown or "SUCCESSFUL" in shown:
    fail("U+10FFFF was taken for a broken sequence:", shown.encode())
# A byte that is no UTF-8 is U+FFFD, refused and shown like any other character.
q7cal.wait_for("\r" + TX_POWER)
os.write(q7cal.fd, b"2\xff0\r")
shown = q7cal.wait_for("Please enter a number.")
if "2\\U+FFFD0" not in shown or "SUCCESSFUL" in shown:
    fail("a byte that is no UTF-8 was not shown as U+FFFD:", shown.encode())
q7cal.prompt(TX_POWER, "-0x\x7f\x1b[D2\r")
q7cal.wait_for("SetTxOutputPower was SUCCESSFUL.")
q7cal.prompt(MENU, "3\r")
if "= -20" not in q7cal.wait_for("GetTxOutputPower was SUCCESSFUL."):
    fail("the device does not have -20 dBm:", q7cal.seen)
# Three up arrows go back past the menu answers 4 and 3 to the answer -20,
# which is edited into -25.
q7cal.prompt(MENU, "4\r")
q7cal.prompt(TX_POWER, "\x1b[A\x1b[A\x1b[A\x7f5\r")
q7cal.wait_for("SetTxOutputPower was SUCCESSFUL.")
q7cal.prompt(MENU, "3\r")
if "= -25" not in q7cal.wait_for("GetTxOutputPower was SUCCESSFUL."):
    fail("the recalled answer, edited, did not reach the device as -25 dBm:", q7cal.seen)

# Ctrl-C at a region write's verify question: the data stays written, the
# WARNING says why, and the session goes on.
q7cal.prompt(MENU, "-1\r")
q7cal.prompt(MENU, "7\r")
q7cal.prompt(MENU, "9\r5\r1\r10\r")
q7cal.prompt(VERIFY, "\x03")
shown = q7cal.wait_for("\r" + MENU)
if "WARNING: Original data not restored, because the command was interrupted." not in shown:
    fail("Ctrl-C after a region write: no WARNING that the command was interrupted:", shown.encode())

# What is typed ahead of the automated run's first pause, which waits for the
# engineer, is dropped there: the words after the menu choice, which the
# editor holds, and the Enter after them, which the terminal still holds.
# Ctrl-C at the pause abandons the run before its second group.
q7cal.type("-1\r")
q7cal.prompt(MENU, "9\r")
q7cal.prompt(MENU, "2 5\r\r")
q7cal.wait_for("Press Enter to continue")
q7cal.type("\x03")
shown = q7cal.wait_for("\r" + MENU)
if "Interrupted: command abandoned." not in shown or "Testing GetRxAntConfig" in shown:
    fail("the words typed ahead answered the automated run's pause:", shown.encode())

# A line typed at a pause answers the pause alone: the rest of "x 1" at the
# sixth does not answer the DSD group's address question after it.
q7cal.type("2\r")  # the menu is drawn already: Automated test
for pause in range(6):
    q7cal.wait_for("\rPress Enter to continue")
    q7cal.type("\r" if pause < 5 else "x 1\r")
q7cal.prompt("    DSD address ? ", "1\r")
q7cal.wait_for("LoadDSD was SUCCESSFUL.")
for pause in range(2):
    q7cal.wait_for("\rPress Enter to continue")
    q7cal.type("\r")
q7cal.wait_for("\r" + MENU)

# Ctrl-C at a menu leaves through the normal exit.
q7cal.type("\x03")
q7cal.wait_for("Closing application...")
if q7cal.exit_status() != 130:
    fail("Ctrl-C at a menu: not status 130")

# ---- Ctrl-\ at a byte write's verify question ------------------------------
q7cal = Terminal([program])
q7cal.prompt(MENU, BYTE_WRITE_TO_VERIFY)
q7cal.prompt(VERIFY, "\x1c")
shown = q7cal.wait_for("Closing application...")
if "Interrupted by SIGQUIT: command abandoned." not in shown or "Restoring original DSD values" not in shown:
    fail("Ctrl-\\ did not finish the restore:", shown.encode())
if q7cal.exit_status() != 128 + 3:
    fail("Ctrl-\\: not status 131")
if termios.tcgetattr(q7cal.fd)[3] & (termios.ICANON | termios.ECHO) != termios.ICANON | termios.ECHO:
    fail("Ctrl-\\: the terminal is left without its line mode or echo")

# ---- Job control from an interactive bash ----------------------------------
shell = Terminal(["/bin/bash", "--norc", "--noprofile", "-i"], {"PS1": SHELL})
shell.wait_for(SHELL)
shell.type("set -b\r")  # a job's end is reported at once, not at the next prompt
shell.wait_for(SHELL)
shell.type(program + "\r")
shell.prompt(MENU, "3\r")
shell.prompt(MENU, "1")
shell.wait_for("1")
shell.type("\x1a")
shell.wait_for("Stopped")
shell.wait_for(SHELL)
shell.type("fg\r")
shell.wait_for(MENU + "1")  # the line typed before the stop, redrawn
shell.type("5\r")
shown = shell.wait_for("GetFeedbackCalAttn was SUCCESSFUL.")  # entry 15, as the screen showed
if MENU + "1" in shown:
    fail("after fg the line is drawn more than once", shown.encode())
shell.prompt(MENU, "-1\r")
shell.prompt(MENU, "-1\r")

# kill %1 on a session stopped at the verify question (bash continues it
# with SIGTERM in the background): the restore is made and the program ends.
shell.wait_for(SHELL)
shell.type(program + "\r")
shell.prompt(MENU, BYTE_WRITE_TO_VERIFY)
shell.prompt(VERIFY, "\x1a")
shell.wait_for("Stopped")
shell.wait_for(SHELL)
shell.type("kill %1\r")
shown = shell.wait_for("Closing application...")
if "Interrupted by SIGTERM: command abandoned." not in shown or "Restoring original DSD values" not in shown:
    fail("kill %1 on a stopped session: no restore:", shown.encode())
shell.wait_for("Exit 143")
shell.type("exit\r")

# ---- Standard output a pipe whose reader goes away ------------------------
terminal, keyboard = os.openpty()
piped = subprocess.Popen([program], stdin=keyboard, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
os.close(keyboard)
printed = b""
while not printed.endswith(MENU.encode()):
    chunk = os.read(piped.stdout.fileno(), 4096)
    if not chunk:
        fail("standard output a pipe: the program ended before its menu:", printed)
    printed += chunk
piped.stdout.close()
try:
    status = piped.wait(timeout=20)
except subprocess.TimeoutExpired:
    piped.kill()
    fail("standard output a pipe: still waiting for an answer after its reader went away")
if status != 4 or b"write error on standard output" not in piped.stderr.read():
    fail("standard output a pipe whose reader went away: status %d, not 4 with a line on stderr" % status)
os.close(terminal)

print("terminal: all checks passed")
