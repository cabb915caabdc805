#!/usr/bin/python3
"""A recorded transcript's whole record as q7cal-report keeps it, so that no
check, measurement, limit, property or line of it changes unnoticed.

The healthy unit's is kept whole: its JSON record (healthy_run.json), its
JUnit file (healthy_run.xml) and its page's DOM as Chromium builds it
(healthy_run.html: scripts and styles left out, each drawn plot as its
canvases and labels). Every other case is held to its lines in
golden/report/records.txt, which say only how its record differs from the
healthy one's. In every case the JUnit file is the JSON record's: a test case
per check, a failure for each check that failed with its message, type and
evidence, the transcript as system-out and the failure lines as system-err.
The host's name and the transcript's time are the run's own and left out.

Usage: report_record_test.py [--record] REPORT GOLDEN_DIR CASE
  --record writes the case's files or its lines in records.txt anew: check
  each line against the transcript before committing it."""
import difflib
import json
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

HEALTHY = "healthy_run"
# A check or measurement that the healthy record lacks starts from these.
NEW_CHECK = {"result": "PASS", "expected_error": False, "type": None, "message": None, "at_seconds": 0.0,
             "seconds": 0.0}
NEW_MEASUREMENT = {"low": None, "high": None, "marginal_low": None, "marginal_high": None, "result": None}

record = sys.argv[1] == "--record"
report, golden, case = sys.argv[1 + record:4 + record]
path = os.path.join(golden, case)
transcript = open(path + ".in", encoding="utf-8").read()
kept_scratch = tempfile.TemporaryDirectory()  # removed when the test ends
scratch = kept_scratch.name
run = subprocess.run([report, "--unit=SN1042", "--station=ST7", "--operator=Q", "--json=" + scratch + "/unit.json",
                      "--junit=" + scratch + "/unit.xml", "--html=" + scratch + "/unit.html", "-"],
                     stdin=open(path + ".in"), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
assert run.returncode <= 1, "q7cal-report did not judge %s.in: status %d" % (case, run.returncode)
json_text = re.sub(r'("start_time": )"[^"]*"', r'\1"TIME"',
                   re.sub(r'("hostname": )"[^"]*"', r'\1"HOST"', open(scratch + "/unit.json").read()))
document = json.loads(json_text)
unit = document["units"][0]
xml_text = open(scratch + "/unit.xml").read()

# The JUnit file says what the JSON record says.
suite = ET.fromstring(xml_text).find("testsuite")
cases = suite.findall("testcase")
assert int(suite.get("tests")) == len(cases) == unit["totals"]["checks"] == len(unit["checks"]), suite.attrib
assert int(suite.get("failures")) == unit["totals"]["failed"], suite.attrib
evidence = {}
for test, check in zip(cases, unit["checks"]):
    failure = test.find("failure")
    assert (test.get("classname"), test.get("name")) == (check["class"], check["name"]), (test.attrib, check)
    assert (failure is not None) == (check["result"] == "FAIL"), check
    if failure is not None:
        assert (failure.get("message"), failure.get("type")) == (check["message"], check["type"]), check
        evidence[check["class"], check["name"]] = failure.text or ""
assert suite.find("system-out").text == transcript, "system-out is not the transcript"
failure_lines = [line for line in open(path + ".out").read().splitlines() if re.search(r"\(line \d+\)$", line)]
assert (suite.find("system-err").text or "").splitlines() == failure_lines, "system-err is not the failure lines"


def compare(what, actual):
    if record:
        open(path + "." + what, "w").write(actual)
        return
    kept = open(path + "." + what).read()
    if kept != actual:
        sys.exit("the %s differs from %s.%s (- expected, + actual):\n%s" % (what, case, what, "".join(
            list(difflib.unified_diff(kept.splitlines(True), actual.splitlines(True)))[:100])))


def page_dom():
    """The page as Chromium leaves it after its scripts ran, without the
    scripts and styles; each drawn plot as its canvases and its labels."""
    dom = subprocess.run(["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                          "--disable-background-networking", "--disable-component-update", "--disable-sync",
                          "--user-data-dir=" + scratch + "/browser", "--dump-dom", "file://" + scratch + "/unit.html"],
                         capture_output=True, text=True, check=True).stdout
    dom = re.sub(r"<(script|style)\b[^>]*>.*?</\1>\n?", "", dom, flags=re.S)
    dom = re.sub(r"(<th>Started \(UTC\)</th><td>)[^<]*", r"\1TIME", re.sub(r'(<th>Host</th><td>|<div class="about">[^<]* on )[^<]*', r"\1HOST", dom))
    return re.sub(r'(<div class="graph" id="[^"]*">)(.*?)(</div></figure>)', lambda m: "%s[%d canvases; %s]%s" % (
        m.group(1), m.group(2).count("<canvas"), ", ".join(re.findall(r'dygraph-label dygraph-\w+">([^<]*)<', m.group(2))),
        m.group(3)), dom, flags=re.S)


if case == HEALTHY:
    compare("json", json_text)
    compare("xml", re.sub(r'hostname="[^"]*" ', 'hostname="HOST" ', re.sub(r'timestamp="[^"]*"', 'timestamp="TIME"', re.sub(
        r"<system-out>.*?</system-out>", "<system-out>[the transcript]</system-out>", xml_text, flags=re.S))))
    compare("html", page_dom())
    sys.exit(0)


# ---- Any other case: how its record differs from the healthy one's ----

def members(document):
    """The record's members but its checks and measurements, by their path."""
    flat = {}
    def walk(value, prefix):
        if isinstance(value, dict):
            for key, member in value.items():
                walk(member, prefix + key + ".")
        else:
            flat[prefix[:-1]] = value
    unit = document["units"][0]
    walk({key: value for key, value in unit.items() if key not in ("checks", "measurements")}, "")
    walk({key: value for key, value in document.items() if key != "units"}, "document.")
    return flat


def items(unit):
    """Checks by class and name (a failed one with its evidence), and measurements by name."""
    found = {}
    for check in unit["checks"]:
        key = ("check", check["class"], check["name"])
        found[key] = {k: v for k, v in check.items() if k not in ("class", "name")}
        if key[1:] in evidence:
            found[key]["evidence"] = evidence[key[1:]]
    for measurement in unit["measurements"]:
        found[("measurement", measurement["name"])] = {k: v for k, v in measurement.items() if k != "name"}
    return found


def lines_text(first, last):
    return "".join(line + "\n" for line in transcript.split("\n")[first - 1:last])


def evidence_lines(text, before):
    """The transcript lines that make up `text`: the last such span that ends by line `before`."""
    if not text:
        return []
    count = text.count("\n")
    spans = [first for first in range(1, transcript.count("\n") + 2) if lines_text(first, first + count - 1) == text]
    first = max([s for s in spans if s + count - 1 <= before] or spans or [0])
    return [first, first + count - 1] if first else text


healthy_document = json.load(open(os.path.join(golden, HEALTHY + ".json")))
table = open(os.path.join(golden, "records.txt")).read()
section = re.search(r"^== %s\b(.*)\n((?:(?!==).*\n)*)" % case, table, re.M)
assert section or record, "records.txt has no lines for " + case
against_healthy = section is None or section.group(1).startswith(" (%s)" % HEALTHY)
healthy = items(healthy_document["units"][0]) if against_healthy else {}
# The healthy record's lines, moved to where the same lines stand in this transcript.
moved = {}
matcher = difflib.SequenceMatcher(None, open(os.path.join(golden, HEALTHY + ".in")).read().split("\n"),
                                  transcript.split("\n"), autojunk=False)
for tag, i1, i2, j1, j2 in matcher.get_opcodes():
    if tag == "equal" or (tag == "replace" and i2 - i1 == j2 - j1):
        moved.update((i1 + k + 1, j1 + k + 1) for k in range(i2 - i1))
for item in healthy.values():
    item["line"] = moved.get(item["line"])
actual = items(unit)
for item in actual.values():
    if "evidence" in item:
        item["evidence"] = evidence_lines(item["evidence"], item["line"])

if record:
    lines = []
    differing = {k: v for k, v in members(document).items() if members(healthy_document).get(k) != v}
    if differing:
        lines.append("record " + json.dumps(differing))
    for key, item in actual.items():
        base = healthy.get(key) or (NEW_CHECK if key[0] == "check" else NEW_MEASUREMENT)
        changed = {k: v for k, v in item.items() if base.get(k, ...) != v or (k == "line" and item["result"] == "FAIL")}
        if changed or key not in healthy:
            lines.append("%s %s %s" % (key[0], json.dumps(list(key[1:]) if key[0] == "check" else key[1]),
                                       json.dumps(changed)))
    lines += ["%s %s absent" % (key[0], json.dumps(list(key[1:]) if key[0] == "check" else key[1]))
              for key in healthy if key not in actual]
    head = section.group(0).split("\n")[0] if section else "== %s (%s): " % (case, HEALTHY)
    new = head + "\n" + "".join(line + "\n" for line in lines) + "\n"
    open(os.path.join(golden, "records.txt"), "w").write(table.replace(section.group(0), new) if section else
                                                         table + "\n" + new)
    sys.exit(0)

# What the table says, each line on top of the healthy record's item (or a new one's).
decoder = json.JSONDecoder()
expected_members = members(healthy_document)
expected = dict(healthy)
for line in section.group(2).splitlines():
    if not line.strip() or line.startswith("#"):
        continue
    kind, rest = line.split(" ", 1)
    key, end = decoder.raw_decode(rest)
    changes = rest[end:].strip()
    if kind == "record":
        expected_members.update(key)
        continue
    key = (kind, *key) if kind == "check" else (kind, key)
    if changes == "absent":
        del expected[key]
    else:
        expected[key] = dict(expected.get(key) or (NEW_CHECK if kind == "check" else NEW_MEASUREMENT),
                             **json.loads(changes))
faults = ["%s: %s, expected %s" % (name, value, expected_members.get(name))
          for name, value in members(document).items() if expected_members.get(name, ...) != value]
faults += ["%s %s: %s" % (key[0], json.dumps(key[1:]), {k: (expected[key].get(k), item.get(k)) for k in
                                                            set(item) | set(expected[key]) if item.get(k, ...) != expected[key].get(k, ...)})
           for key, item in actual.items() if key in expected and item != expected[key]]
faults += ["%s %s is not expected" % key[:2] for key in actual if key not in expected]
faults += ["%s %s is missing" % key[:2] for key in expected if key not in actual]
# In order: checks, then measurements, each by line; those of one line in the
# healthy unit's order, then in the table's.
order = sorted(expected, key=lambda key: (key[0] == "measurement", expected[key]["line"]))
if [key for key in actual if key in expected] != order:
    faults.append("the checks or measurements are not in the expected order")
if faults:
    sys.exit("%s's record differs from its lines in records.txt:\n  %s" % (case, "\n  ".join(faults)))
