"""Reads q7cal-report's files for two units (a healthy one, then one with a
corrupted store) as a production line's tools would: the JUnit file with
Debian's junitparser, the JSON records, and the page's DOM as Chromium left
it after running its scripts.
Usage: check_report_files.py UNITS.xml UNITS.json DOM.html"""
import json
import re
import socket
import sys
from html.parser import HTMLParser

import junitparser

junit_file, json_file, dom_file = sys.argv[1:4]

# JUnit: a suite per unit, with its identity and the failing checks named.
suites = list(junitparser.JUnitXml.fromfile(junit_file))
assert len(suites) == 2, [suite.name for suite in suites]
healthy, corrupted = suites
assert healthy.name != corrupted.name
assert healthy.failures == 0 and healthy.tests == len(list(healthy)) > 50, (healthy.failures, healthy.tests)
properties = {p.name: p.value for p in healthy.properties()}
assert properties["mac_address"] == "02:1A:C7:30:5E:81", properties
assert properties["simulated"] == "yes" and properties["station"] == "ST7" and properties["operator"] == "Ada L"
assert properties["source"].endswith("healthy_run.in") and properties["report_version"][0].isdigit(), properties
failed = {case.name: case.result[0] for case in corrupted if not case.is_passed}
assert set(failed) == {"DSD Management Commands: DSD checksum", "DSD Management Commands: RF checksum",
                       "DSD Management Commands: CAL checksum", "DSD Management Commands: Calibration state"}, failed
assert failed["DSD Management Commands: RF checksum"].message == "RF checksum is NOT VALID"
assert corrupted.failures == 4

# JSON: each unit named, simulated, its verdict, checks and measurements.
document = json.load(open(json_file))
assert document["schema_version"] == 2 and document["verdict"] == "FAIL"
units = document["units"]
assert [unit["verdict"] for unit in units] == ["PASS", "FAIL"]
# One count of checks in every file.
for suite, unit in zip(suites, units):
    assert suite.tests == len(list(suite)) == unit["totals"]["checks"] == len(unit["checks"]), (suite.tests, unit["totals"])
    assert suite.failures == unit["totals"]["failed"] == sum(c["result"] == "FAIL" for c in unit["checks"])
for unit in units:
    assert unit["unit"]["identity"]["mac_address"] == "02:1A:C7:30:5E:81" and unit["unit"]["simulated"] is True
    assert unit["context"]["station"] == "ST7" and unit["context"]["operator"] == "Ada L"
    assert unit["context"]["hostname"] == socket.gethostname() == healthy.hostname, unit["context"]
arrays = sum(1 for unit in units for m in unit["measurements"] if "values" in m)


# The page: the verdict, and a drawn plot (a canvas) for every list of values.
class Page(HTMLParser):
    def __init__(self):
        super().__init__()
        self.depth = 0
        self.verdict = None
        self.in_verdict = False
        self.graph_depth = None
        self.graphs = []

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag not in ("meta", "br", "link", "img", "input"):
            self.depth += 1
        if attrs.get("id") == "verdict":
            self.in_verdict = True
        if "graph" in (attrs.get("class") or "").split():
            self.graph_depth = self.depth
            self.graphs.append(0)
        if tag == "canvas" and self.graph_depth is not None:
            self.graphs[-1] += 1

    def handle_endtag(self, tag):
        if tag not in ("meta", "br", "link", "img", "input"):
            if self.graph_depth == self.depth:
                self.graph_depth = None
            self.depth -= 1
        self.in_verdict = False

    def handle_data(self, data):
        if self.in_verdict and data.strip():
            self.verdict = data.strip()


page = Page()
page.feed(open(dom_file).read())
assert page.verdict == "FAIL", page.verdict
assert len(page.graphs) == arrays, (len(page.graphs), arrays)
assert all(canvases > 0 for canvases in page.graphs), page.graphs
dom = open(dom_file).read()
assert "2 units judged by q7cal-report " in dom
# Each unit's plots, in its own section, draw the record's lists in its
# order: each row an entry's index (a spectrum's bin) and value, and the
# list's limits where it has any.
sections = dom.split('<section class="unit"')[1:]
plots = [plot for section in sections
         for data in re.findall(r'<script type="application/json" class="plot-data">(.*?)</script>', section, re.S)
         for plot in json.loads(data)]
lists = [(u, k, m) for u, unit in enumerate(units)
         for k, m in enumerate(m for m in unit["measurements"] if "values" in m)]
limits = lambda m: [m["low"], m["high"]] if m["low"] is not None else []
assert any(limits(m) for u, k, m in lists)
assert plots == [{"id": "plot-%d-%d" % (u, k), "title": m["name"], "ylabel": m["unit"],
                  "labels": ["bin" if m["quantity"] == "Rx spectrum" else "index", m["name"]] +
                            (["low limit", "high limit"] if limits(m) else []),
                  "rows": [[i, value] + limits(m) for i, value in enumerate(m["values"])]}
                 for u, k, m in lists], "the plots do not draw the record's lists"
counted = ["%d checks: %d PASS, %d MARGINAL, %d FAIL, %d expected errors." % tuple(
    unit["totals"][k] for k in ("checks", "passed", "marginal", "failed", "expected_errors")) for unit in units]
assert all(text in section for text, section in zip(counted, sections)), "the checks are miscounted"
# A healthy unit's page marks nothing failed; the corrupted one's, its failed checks alone.
assert '<tr class="failed">' not in sections[0], "the healthy unit shows a failed row"
assert sections[1].count('<tr class="failed">') == units[1]["totals"]["failed"], "the failed rows are miscounted"
# Each unit's plots stand in its own section.
for unit, section in enumerate(sections):
    drawn_here = re.findall(r'id="plot-(\d+)-', section)
    assert drawn_here and set(drawn_here) == {str(unit)}, (unit, drawn_here)
# Each unit's identity: who, where, when, how long, from what.
for label in ("Station", "Operator", "Host", "Started (UTC)", "Duration", "Transcript", "MAC address"):
    assert "".join(sections).count("<th>%s</th>" % label) == len(units), label
assert dom.count("<th>Unit</th><td>02:1A:C7:30:5E:81</td>") == len(units), "a unit is not named by its MAC address"
print("junit, json and page: %d suites, %d units, %d plots drawn" % (len(suites), len(units), len(page.graphs)))
