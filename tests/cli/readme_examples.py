"""Runs the README's examples and compares what they print with what the
README shows, so that the document cannot drift from the programs.

An example is an indented block whose lines that start with "$ " are
commands (one that bash finds unfinished goes on on the next line); the lines after a command, up
to the next, are what it prints: each must appear in its output, in order,
where a line "..." stands for any lines between. A command runs in a scratch
folder with bash, `make run` and `./build/q7cal` meaning the q7cal under
test and `./build/q7cal-report` the q7cal-report under test; the examples of
one block share their folder.
Usage: readme_examples.py README Q7CAL Q7CAL_REPORT"""
import os
import re
import subprocess
import sys
import tempfile

readme, q7cal, report = sys.argv[1], os.path.abspath(sys.argv[2]), os.path.abspath(sys.argv[3])


def blocks(text):
    """The indented blocks that hold a "$ " command: a list of their lines."""
    found, current = [], []
    for line in text.split("\n") + [""]:
        if line.startswith("    ") or (current and not line.strip()):
            current.append(line[4:])
            continue
        while current and not current[-1].strip():
            current.pop()
        if any(line.startswith("$ ") for line in current):
            found.append(current)
        current = []
    return found


def examples(block):
    """(command, the lines it prints) for each command of the block."""
    result = []
    for line in block:
        if line.startswith("$ "):
            result.append([line[2:], []])
        elif result and not result[-1][1] and unfinished(result[-1][0]):
            result[-1][0] += "\n" + line
        elif result:
            result[-1][1].append(line)
    return result


def unfinished(command):
    """A command that goes on on the next line: bash finds it cut short."""
    check = subprocess.run(["bash", "-n", "-c", command], capture_output=True, text=True)
    return command.rstrip().endswith(("\\", "|")) or "unexpected end of file" in check.stderr


def shows(output, expected):
    """Whether the expected lines stand in the output in order, "..." skipping any."""
    lines = [line.rstrip() for line in output.split("\n")]
    at, skipping = 0, False
    for want in expected:
        if want.strip() == "...":
            skipping = True
            continue
        want = want.rstrip()
        while at < len(lines) and lines[at] != want:
            if not skipping:
                return False
            at += 1
        if at == len(lines):
            return False
        at, skipping = at + 1, False
    return True


failures, count = 0, 0
for block in blocks(open(readme, encoding="utf-8").read()):
    with tempfile.TemporaryDirectory() as folder:
        for command, expected in examples(block):
            count += 1
            run = re.sub(r"\bmake run\b|\./build/q7cal\b(?!-)", q7cal, command)
            run = run.replace("./build/q7cal-report", report)
            done = subprocess.run(["bash", "-c", run], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  text=True, timeout=60, env=dict(os.environ, LC_ALL="C", HOME=folder, XDG_STATE_HOME=folder))
            if not shows(done.stdout, expected):
                failures += 1
                print("README example: %s\nshould show:\n%s\nbut printed:\n%s" % (
                    command, "\n".join(expected), done.stdout[-3000:]))
print("%d README examples run, %d do not show what the README says" % (count, failures))
sys.exit(1 if failures or count == 0 else 0)
