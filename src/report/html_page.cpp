// The HTML page: what an engineer looks at. One file with its style, data and
// plotting script inside, so that it opens offline and can be mailed or kept.
#include <algorithm>
#include <cstdio>

#include "report_writers.h"
#include "text_safety.h"

namespace q7report {
namespace {

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}


const char kStyle[] = R"css(
body { font: 15px/1.4 system-ui, sans-serif; margin: 0; color: #1d2329; background: #f4f6f8; }
header { padding: 24px 32px; background: #fff; border-bottom: 1px solid #d5dbe1; display: flex; align-items: center; gap: 28px; }
#verdict { font-size: 56px; font-weight: 800; padding: 4px 28px; border-radius: 10px; color: #fff; letter-spacing: 2px; }
.pass { color: #17692f; } .fail, .error { color: #b3261e; } .marginal { color: #8a5a00; }
#verdict.pass { background: #1e8e3e; color: #fff; } #verdict.fail, #verdict.error { background: #c5221f; color: #fff; }
header .about { color: #4a5560; }
section.units { margin: 24px 32px; }
section.unit { margin: 24px 32px; padding: 8px 24px 24px; background: #fff; border: 1px solid #d5dbe1; border-radius: 10px; }
h1 { font-size: 22px; } h2 { font-size: 17px; margin-top: 28px; border-bottom: 1px solid #e3e7eb; padding-bottom: 4px; }
.badge { font-size: 13px; font-weight: 600; padding: 2px 8px; border-radius: 10px; background: #fde7b0; color: #6b4e00; vertical-align: middle; }
table { border-collapse: collapse; }
td, th { padding: 3px 12px 3px 0; text-align: left; vertical-align: top; }
th { color: #4a5560; font-weight: 600; }
table.identity th { width: 16em; }
table.list td, table.list th { border-bottom: 1px solid #eef1f4; padding-right: 18px; }
td.number { text-align: right; font-variant-numeric: tabular-nums; }
tr.failed td { background: #fdecea; }
pre { margin: 6px 0; padding: 8px; background: #f6f8fa; border: 1px solid #e3e7eb; font-size: 12px; overflow-x: auto; }
.plots { display: flex; flex-wrap: wrap; gap: 24px; }
figure { margin: 0; } figcaption { font-weight: 600; margin-bottom: 4px; }
.graph { width: 560px; height: 260px; }
summary { cursor: pointer; color: #1a5fb4; margin: 10px 0; }
)css";

// Every list of values a unit printed, as rows for the plotting script: the
// value against its index (the spectrum against its bins), with the limits
// as two more lines where it has any.
nlohmann::ordered_json PlotData(const UnitRecord &record, size_t unit)
{
    nlohmann::ordered_json plots = nlohmann::ordered_json::array();
    for (const Measurement &measurement : record.measurements) {
        if (!measurement.isArray)
            continue;
        nlohmann::ordered_json labels = {measurement.quantity == "Rx spectrum" ? "bin" : "index", measurement.name};
        if (measurement.limit) {
            labels.push_back("low limit");
            labels.push_back("high limit");
        }
        nlohmann::ordered_json rows = nlohmann::ordered_json::array();
        for (size_t i = 0; i < measurement.values.size(); i++) {
            nlohmann::ordered_json row = {i, measurement.values[i]};
            if (measurement.limit) {
                row.push_back(measurement.limit->low);
                row.push_back(measurement.limit->high);
            }
            rows.push_back(row);
        }
        plots.push_back({{"id", "plot-" + std::to_string(unit) + "-" + std::to_string(plots.size())},
                         {"title", measurement.name},
                         {"ylabel", measurement.unit},
                         {"labels", labels},
                         {"rows", rows}});
    }
    return plots;
}

const char *ResultWord(const Check &check) { return !check.passed ? "FAIL" : check.marginal ? "MARGINAL" : "PASS"; }
const char *ResultClass(const Check &check) { return !check.passed ? "fail" : check.marginal ? "marginal" : "pass"; }

void Identity(std::string &page, const UnitRecord &record, const RunContext &context)
{
    auto row = [&page](const std::string &label, const std::string &value) {
        if (!value.empty())
            page += "<tr><th>" + HtmlEscape(label) + "</th><td>" + HtmlEscape(value) + "</td></tr>\n";
    };
    page += "<table class=\"identity\">\n";
    row("Unit", UnitName(record, context));
    row("Station", context.station);
    row("Operator", context.operatorName);
    row("Host", context.hostname);
    row("Started (UTC)", IsoTime(record.startMs));
    row("Duration", Number(record.seconds) + " s");
    row("Transcript", record.source);
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        row(kIdentityFields[i].label, record.identity[i]);
    page += "</table>\n";
}

// A table of checks: those that did not fully pass each with the message and
// the transcript lines it was judged on.
void CheckTable(std::string &page, const UnitRecord &record, bool failures)
{
    page += "<table class=\"list checks\">\n<tr><th>Result</th><th>Class</th><th>Check</th><th>Time (s)</th>"
            "<th>Line</th></tr>\n";
    for (const Check &check : record.checks) {
        bool notFullPass = !check.passed || check.marginal;
        if (notFullPass != failures)
            continue;
        page += std::string("<tr class=\"") + (check.passed ? "passed" : "failed") + "\"><td class=\"" +
                ResultClass(check) + "\">" + ResultWord(check) + "</td><td>" + HtmlEscape(check.classname) +
                "</td><td>" + HtmlEscape(check.name);
        if (notFullPass)
            page += "<br><strong>" + HtmlEscape(check.message) + "</strong><pre>" + HtmlEscape(check.evidence) + "</pre>";
        char time[32];
        std::snprintf(time, sizeof time, "%.3f", check.seconds);
        page += "</td><td class=\"number\">" + std::string(time) + "</td><td class=\"number\">" +
                std::to_string(check.line) + "</td></tr>\n";
    }
    page += "</table>\n";
}

// Failures and marginal passes first and in full; the passed checks folded away below them.
void Checks(std::string &page, const UnitRecord &record)
{
    Totals totals = record.Count();
    page += "<h2>Checks</h2>\n<p class=\"totals\">" + std::to_string(totals.checks) + " checks: " +
            std::to_string(totals.passed) + " PASS, " + std::to_string(totals.marginal) + " MARGINAL, " +
            std::to_string(totals.failed) + " FAIL, " + std::to_string(totals.expectedErrors) +
            " expected errors.</p>\n";
    if (totals.failed + totals.marginal > 0)
        CheckTable(page, record, true);
    page += "<details class=\"passed-checks\"><summary>" +
            std::to_string(totals.passed + totals.expectedErrors) + " checks passed</summary>\n";
    CheckTable(page, record, false);
    page += "</details>\n";
}

void MeasurementRow(std::string &page, const Measurement &measurement)
{
    std::string value = Number(measurement.values.front());
    if (measurement.isArray) {
        auto [low, high] = std::minmax_element(measurement.values.begin(), measurement.values.end());
        value = std::to_string(measurement.values.size()) + " values, " + Number(*low) + " to " + Number(*high);
    }
    const std::optional<Limit> &limit = measurement.limit;
    const char *result = !limit ? "" : !measurement.withinLimits ? "FAIL" : measurement.marginal ? "MARGINAL" : "PASS";
    const char *resultClass = !limit ? "" : !measurement.withinLimits ? "fail" : measurement.marginal ? "marginal" : "pass";
    page += std::string("<tr") + (limit && !measurement.withinLimits ? " class=\"failed\"" : "") + "><td>" +
            HtmlEscape(measurement.name) + "</td><td class=\"number\">" + value + "</td><td>" +
            HtmlEscape(measurement.unit) + "</td><td class=\"number\">" + (limit ? Number(limit->low) : "") +
            "</td><td class=\"number\">" + (limit ? Number(limit->high) : "") + "</td><td class=\"" + resultClass +
            "\">" + result + "</td></tr>\n";
}

// The values judged by limits in view; every other value folded away.
void Measurements(std::string &page, const UnitRecord &record)
{
    const char kHeader[] = "<table class=\"list measurements\">\n<tr><th>Measurement</th><th>Value</th><th>Unit</th>"
                           "<th>Low limit</th><th>High limit</th><th>Result</th></tr>\n";
    size_t judged = 0;
    page += std::string("<h2>Measurements</h2>\n") + kHeader;
    for (const Measurement &measurement : record.measurements)
        if (measurement.limit) {
            MeasurementRow(page, measurement);
            judged++;
        }
    page += "</table>\n<details><summary>" + std::to_string(record.measurements.size() - judged) +
            " more values, without limits</summary>\n" + kHeader;
    for (const Measurement &measurement : record.measurements)
        if (!measurement.limit)
            MeasurementRow(page, measurement);
    page += "</table>\n</details>\n";
}

const char *VerdictClass(const std::string &word)
{
    return word == "PASS" ? "pass" : word == "ERROR" ? "error" : "fail";
}

// A unit's section of the page: its heading, then its details and its
// plots' data as text, for the page to build when the unit is looked at.
std::string UnitSection(const UnitRecord &record, const RunContext &context, size_t unit)
{
    const std::string verdict = record.Verdict();
    std::string page = "<section class=\"unit\" id=\"unit-" + std::to_string(unit) + "\">\n<h1>Unit " +
                       HtmlEscape(UnitName(record, context)) + " <span class=\"" + VerdictClass(verdict) + "\">" +
                       verdict + "</span>";
    std::optional<bool> simulated = record.Simulated();
    page += !simulated ? " <span class=\"badge\">device not identified</span>"
            : *simulated ? " <span class=\"badge\">simulated device</span>"
                         : "";
    page += "</h1>\n";
    if (!record.error.empty()) {
        page += "<p class=\"error\">" + HtmlEscape(record.error) + "</p>\n</section>\n";
        return page;
    }
    std::string detail;
    Identity(detail, record, context);
    Checks(detail, record);
    nlohmann::ordered_json plots = PlotData(record, unit);
    detail += "<h2>Plots</h2>\n<div class=\"plots\">\n";
    for (const auto &plot : plots)
        detail += "<figure><figcaption>" + HtmlEscape(plot["title"].get<std::string>()) +
                  "</figcaption><div class=\"graph\" id=\"" + plot["id"].get<std::string>() + "\"></div></figure>\n";
    detail += "</div>\n";
    Measurements(detail, record);
    page += "<div class=\"detail\"></div>\n<script type=\"application/json\" class=\"unit-detail\">" +
            ScriptJson(detail) + "</script>\n<script type=\"application/json\" class=\"plot-data\">" +
            ScriptJson(plots) + "</script>\n</section>\n";
    return page;
}

}  // namespace

std::string HtmlEscape(const std::string &text)
{
    std::string escaped;
    for (char c : VisibleControls(text)) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default: escaped += c;
        }
    }
    return escaped;
}

std::string ScriptJson(const nlohmann::ordered_json &value)
{
    std::string text = value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    for (size_t at = text.find("</"); at != std::string::npos; at = text.find("</", at + 2))
        text.replace(at, 2, "<\\/");
    return text;
}

HtmlWriter::HtmlWriter(std::ostream &out, const RunContext &context, const std::string &plotLibrary,
                       const std::string &plotStyle)
    : out_(out), context_(context), plotLibrary_(plotLibrary), plotStyle_(plotStyle), sections_(std::tmpfile())
{
}

HtmlWriter::~HtmlWriter()
{
    if (sections_ != nullptr)
        std::fclose(sections_);
}

bool HtmlWriter::Add(const UnitRecord &record)
{
    const std::string verdict = record.Verdict();
    Totals totals = record.Count();
    unitRows_ += "<tr><td><a href=\"#unit-" + std::to_string(units_) + "\">" + HtmlEscape(UnitName(record, context_)) +
                 "</a></td><td class=\"" + VerdictClass(verdict) + "\">" + verdict + "</td><td class=\"number\">" +
                 std::to_string(totals.failed) + "</td><td class=\"number\">" + std::to_string(totals.marginal) +
                 "</td><td>" + HtmlEscape(record.error.empty() ? record.source : record.error) + "</td></tr>\n";
    std::string section = UnitSection(record, context_, units_++);
    return sections_ != nullptr && std::fwrite(section.data(), 1, section.size(), sections_) == section.size();
}

bool HtmlWriter::End(const BatchVerdict &verdict)
{
    if (sections_ == nullptr || std::fflush(sections_) != 0 || std::fseek(sections_, 0, SEEK_SET) != 0)
        return false;
    const std::string word = verdict.Word();
    out_ << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>q7cal-report: " << word
         << "</title>\n<style>\n"
         << plotStyle_ << kStyle << "</style>\n<script>\n"
         << plotLibrary_ << "\n</script>\n</head>\n<body>\n<header>\n<div id=\"verdict\" class=\"" << VerdictClass(word)
         << "\">" << word << "</div>\n<div class=\"about\">" << units_ << (units_ == 1 ? " unit" : " units")
         << " judged by q7cal-report " << HtmlEscape(context_.reportVersion) << " on " << HtmlEscape(context_.hostname)
         << "</div>\n</header>\n<section class=\"units\">\n<table class=\"list\" id=\"units\">\n<tr><th>Unit</th>"
            "<th>Verdict</th><th>Failed</th><th>Marginal</th><th>Transcript</th></tr>\n"
         << unitRows_ << "</table>\n</section>\n";
    char buffer[65536];
    for (size_t read; (read = std::fread(buffer, 1, sizeof buffer, sections_)) > 0;)
        out_.write(buffer, static_cast<std::streamsize>(read));
    if (std::ferror(sections_))
        return false;
    out_ << R"js(<script>
// A unit's plots are drawn when its plots come into view: a page of a
// thousand units opens at once, and draws what is looked at.
function drawPlots(data) {
  for (const plot of JSON.parse(data.textContent)) {
    new Dygraph(document.getElementById(plot.id), plot.rows, {
      labels: plot.labels, xlabel: plot.labels[0], ylabel: plot.ylabel,
      drawPoints: plot.rows.length <= 64, strokeWidth: 1.5, legend: 'follow',
      colors: ['#1a73e8', '#c5221f', '#c5221f'],
      axes: {x: {axisLabelFormatter: x => Number.isInteger(x) ? String(x) : ''}},
      series: {'low limit': {strokePattern: [4, 4]}, 'high limit': {strokePattern: [4, 4]}}
    });
  }
}
// A unit's details are built, and its plots drawn, when it is looked at: a
// page of a thousand units opens at once. The first three are built at once.
function reveal(section) {
  const detail = section.querySelector('script.unit-detail');
  if (!detail)
    return;
  section.querySelector('div.detail').innerHTML = JSON.parse(detail.textContent);
  detail.remove();
  drawPlots(section.querySelector('script.plot-data'));
}
const inView = new IntersectionObserver(entries => {
  for (const entry of entries)
    if (entry.isIntersecting) {
      inView.unobserve(entry.target);
      reveal(entry.target);
    }
}, {rootMargin: '400px'});
document.querySelectorAll('section.unit').forEach((section, i) => i < 3 ? reveal(section) : inView.observe(section));
</script>
</body>
</html>
)js";
    return static_cast<bool>(out_);
}

}  // namespace q7report
