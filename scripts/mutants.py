#!/usr/bin/env python3
"""Plants faults in a copy of the tree, one at a time, and says which tests
catch each: the measure of what the test suite guards.

    scripts/mutants.py [--list FILE] [--only N[,N...]] [--keep DIR] [--check]

Each mutant of scripts/mutants.txt replaces one exact text, found exactly once
in its file, by another. The copy is built once with the sanitized test
configuration and must pass; then each mutant is applied, built and tested
with CTest, and reverted. A mutant that no test catches is a fault the suite
misses. Writes the table of mutants and the tests that failed for each to
build-mutants/kills.tsv, and a summary to stdout.

The list's format: a line "## description" starts a mutant; "@ path" names
the file; "- text" is the text to find and "+ text" what replaces it (several
"-" or "+" lines stand for several lines; "+" alone with nothing after it
deletes). Lines starting with "#" and a blank are comments.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def parse(path):
    mutants, current = [], None
    for raw in open(path, encoding="utf-8"):
        line = raw.rstrip("\n")
        if line.startswith("## "):
            current = {"what": line[3:], "file": None, "old": [], "new": []}
            mutants.append(current)
        elif line.startswith("@ "):
            current["file"] = line[2:].strip()
        elif line.startswith("- ") or line == "-":
            current["old"].append(line[2:])
        elif line.startswith("+ ") or line == "+":
            current["new"].append(line[2:])
    for m in mutants:
        m["old"] = "\n".join(m["old"])
        m["new"] = "\n".join(m["new"])
    return mutants


def run(command, cwd, log, timeout):
    with open(log, "w") as out:
        try:
            return subprocess.run(command, cwd=cwd, stdout=out, stderr=subprocess.STDOUT, timeout=timeout).returncode
        except subprocess.TimeoutExpired:
            return -1


def failed_tests(log):
    names = []
    seen_list = False
    for line in open(log, encoding="utf-8", errors="replace"):
        if line.startswith("The following tests FAILED"):
            seen_list = True
        elif seen_list:
            match = re.match(r"\s+\d+ - (\S+)", line)
            if match:
                names.append(match.group(1))
    return names


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--list", default=os.path.join(ROOT, "scripts", "mutants.txt"))
    parser.add_argument("--only", default="")
    parser.add_argument("--keep", default="", help="work in this copy of the tree and keep it")
    parser.add_argument("--check", action="store_true", help="only check that every mutant applies")
    args = parser.parse_args()

    mutants = parse(args.list)
    if args.check:
        bad = 0
        for number, m in enumerate(mutants, 1):
            found = open(os.path.join(ROOT, m["file"]), encoding="utf-8").read().count(m["old"])
            if found != 1:
                bad += 1
                print("%3d  found %d times: %s" % (number, found, m["what"]))
        print("%d mutants, %d do not apply" % (len(mutants), bad))
        sys.exit(bad != 0)
    chosen = [int(n) for n in args.only.split(",") if n] or range(1, len(mutants) + 1)
    out_dir = os.path.join(ROOT, "build-mutants")
    os.makedirs(out_dir, exist_ok=True)
    copy = args.keep or os.path.join(out_dir, "tree")
    if not args.keep or not os.path.exists(copy):
        shutil.rmtree(copy, ignore_errors=True)
        files = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                               capture_output=True, text=True, check=True).stdout.split()
        for name in files:
            if os.path.isfile(os.path.join(ROOT, name)):
                os.makedirs(os.path.dirname(os.path.join(copy, name)), exist_ok=True)
                shutil.copy2(os.path.join(ROOT, name), os.path.join(copy, name))
    build = os.path.join(copy, "build-test")
    configure = ["cmake", "-S", copy, "-B", build, "-DCMAKE_BUILD_TYPE=Debug", "-DQ7_SANITIZE=ON", "-DQ7_TESTS=ON"]
    make = ["cmake", "--build", build, "-j", "2"]
    ctest = ["ctest", "--test-dir", build, "-j", "2", "--timeout", "120"]
    log = os.path.join(out_dir, "log.txt")
    if run(configure, copy, log, 600) or run(make, copy, log, 3600) or run(ctest, copy, log, 3600):
        sys.exit("the unmutated copy does not build or pass: see " + log)

    table = open(os.path.join(out_dir, "kills.tsv"), "w")
    missed = []
    for number in chosen:
        m = mutants[number - 1]
        path = os.path.join(copy, m["file"])
        text = open(path, encoding="utf-8").read()
        if text.count(m["old"]) != 1:
            print("%3d  NOT APPLIED (found %d times): %s" % (number, text.count(m["old"]), m["what"]), flush=True)
            continue
        started = time.time()
        open(path, "w", encoding="utf-8").write(text.replace(m["old"], m["new"]))
        try:
            if run(make, copy, log, 3600) != 0:
                verdict, kills = "does not build", []
            else:
                run(ctest, copy, log, 3600)
                kills = failed_tests(log)
                verdict = "caught by %d" % len(kills) if kills else "MISSED"
        finally:
            open(path, "w", encoding="utf-8").write(text)
        if verdict == "MISSED":
            missed.append(number)
        print("%3d  %-16s %4.0fs  %s" % (number, verdict, time.time() - started, m["what"]), flush=True)
        table.write("%d\t%s\t%s\t%s\n" % (number, m["what"], verdict, " ".join(kills)))
        table.flush()
    run(make, copy, log, 3600)  # leave the copy built as it is
    print("%d mutants, %d missed: %s" % (len(chosen), len(missed), " ".join(map(str, missed))))


if __name__ == "__main__":
    main()
