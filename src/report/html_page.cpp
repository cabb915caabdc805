// The HTML page: what an engineer looks at. One file with its style, data and
// plotting script inside, so that it opens offline and can be mailed or kept.
#include <algorithm>
#include <cstdio>

#include "report_writers.h"

namespace q7report {
namespace {

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

const char *ResultClass(bool passed) { return passed ? "pass" : "fail"; }
const char *ResultWord(bool passed) { return passed ? "PASS" : "FAIL"; }

const char kStyle[] = R"css(
body { font: 15px/1.4 system-ui, sans-serif; margin: 0; color: #1d2329; background: #f4f6f8; }
header { padding: 24px 32px; background: #fff; border-bottom: 1px solid #d5dbe1; display: flex; align-items: center; gap: 28px; }
#verdict { font-size: 56px; font-weight: 800; padding: 4px 28px; border-radius: 10px; color: #fff; letter-spacing: 2px; }
.pass { color: #17692f; } .fail { color: #b3261e; }
#verdict.pass { background: #1e8e3e; color: #fff; } #verdict.fail { background: #c5221f; color: #fff; }
header .about { color: #4a5560; }
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
nlohmann::ordered_json PlotData(const std::vector<UnitRecord> &records)
{
    nlohmann::ordered_json plots = nlohmann::ordered_json::array();
    for (size_t unit = 0; unit < records.size(); unit++)
        for (const Measurement &measurement : records[unit].measurements) {
            if (!measurement.isArray)
                continue;
            nlohmann::ordered_json labels = {measurement.quantity == "Rx spectrum" ? "bin" : "index",
                                             measurement.name};
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
                             {"unit", unit},
                             {"title", measurement.name},
                             {"ylabel", measurement.unit},
                             {"labels", labels},
                             {"rows", rows}});
        }
    return plots;
}

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
    row("Started (UTC)", IsoTime(record.start));
    row("Duration", Number(record.seconds) + " s");
    row("Transcript", record.source);
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        row(kIdentityFields[i].label, record.identity[i]);
    page += "</table>\n";
}

// A table of checks: the failures each with the transcript lines it was judged on.
void CheckTable(std::string &page, const UnitRecord &record, bool failures)
{
    page += "<table class=\"list checks\">\n<tr><th>Result</th><th>Class</th><th>Check</th><th>Time (s)</th>"
            "<th>Line</th></tr>\n";
    for (const Check &check : record.checks) {
        if (check.passed == failures)
            continue;
        page += std::string("<tr class=\"") + (check.passed ? "passed" : "failed") + "\"><td class=\"" +
                ResultClass(check.passed) + "\">" + ResultWord(check.passed) + "</td><td>" + HtmlEscape(check.classname) +
                "</td><td>" + HtmlEscape(check.name);
        if (!check.passed)
            page += "<br><strong>" + HtmlEscape(check.message) + "</strong><pre>" + HtmlEscape(check.evidence) + "</pre>";
        char time[32];
        std::snprintf(time, sizeof time, "%.3f", check.seconds);
        page += "</td><td class=\"number\">" + std::string(time) + "</td><td class=\"number\">" +
                std::to_string(check.line) + "</td></tr>\n";
    }
    page += "</table>\n";
}

// Failures first and in full; the passed checks folded away below them.
void Checks(std::string &page, const UnitRecord &record)
{
    Totals totals = record.Count();
    size_t failed = std::count_if(record.checks.begin(), record.checks.end(), [](const Check &c) { return !c.passed; });
    page += "<h2>Checks</h2>\n<p>" + std::to_string(record.checks.size()) + " checks, " + std::to_string(failed) +
            " failed; " + std::to_string(totals.expectedErrors) + " expected errors seen.</p>\n";
    if (failed > 0)
        CheckTable(page, record, true);
    page += "<details class=\"passed-checks\"><summary>" + std::to_string(record.checks.size() - failed) +
            " checks passed</summary>\n";
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
    bool judged = measurement.limit.has_value();
    page += std::string("<tr") + (judged && !measurement.withinLimits ? " class=\"failed\"" : "") + "><td>" +
            HtmlEscape(measurement.name) + "</td><td class=\"number\">" + value + "</td><td>" + HtmlEscape(measurement.unit) +
            "</td><td class=\"number\">" + (judged ? Number(measurement.limit->low) : "") +
            "</td><td class=\"number\">" + (judged ? Number(measurement.limit->high) : "") + "</td><td" +
            (judged ? std::string(" class=\"") + ResultClass(measurement.withinLimits) + "\">" +
                          ResultWord(measurement.withinLimits)
                    : std::string(">")) +
            "</td></tr>\n";
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

}  // namespace

std::string HtmlEscape(const std::string &text)
{
    std::string escaped;
    for (char c : text) {
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
    std::string text = value.dump();
    for (size_t at = text.find("</"); at != std::string::npos; at = text.find("</", at + 2))
        text.replace(at, 2, "<\\/");
    return text;
}

std::string HtmlPage(const std::vector<UnitRecord> &records, const RunContext &context,
                     const std::string &plotLibrary, const std::string &plotStyle)
{
    bool passed = !records.empty();
    for (const UnitRecord &record : records)
        passed = passed && record.Passed();
    nlohmann::ordered_json plots = PlotData(records);

    std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>q7cal-report: ";
    page += std::string(ResultWord(passed)) + "</title>\n<style>\n" + plotStyle + kStyle + "</style>\n<script>\n" +
            plotLibrary + "\n</script>\n</head>\n<body>\n<header>\n<div id=\"verdict\" class=\"" + ResultClass(passed) +
            "\">" + ResultWord(passed) + "</div>\n<div class=\"about\">" + std::to_string(records.size()) +
            (records.size() == 1 ? " unit" : " units") + " judged by q7cal-report " + HtmlEscape(context.reportVersion) +
            " on " + HtmlEscape(context.hostname) + "</div>\n</header>\n";
    for (size_t unit = 0; unit < records.size(); unit++) {
        const UnitRecord &record = records[unit];
        page += "<section class=\"unit\" id=\"unit-" + std::to_string(unit) + "\">\n<h1>Unit " +
                HtmlEscape(UnitName(record, context)) + " <span class=\"" + ResultClass(record.Passed()) + "\">" +
                ResultWord(record.Passed()) + "</span>" +
                (record.Simulated() ? " <span class=\"badge\">simulated device</span>" : "") + "</h1>\n";
        Identity(page, record, context);
        Checks(page, record);
        page += "<h2>Plots</h2>\n<div class=\"plots\">\n";
        for (const auto &plot : plots)
            if (plot["unit"] == unit)
                page += "<figure><figcaption>" + HtmlEscape(plot["title"].get<std::string>()) +
                        "</figcaption><div class=\"graph\" id=\"" + plot["id"].get<std::string>() +
                        "\"></div></figure>\n";
        page += "</div>\n";
        Measurements(page, record);
        page += "</section>\n";
    }
    page += "<script>\nconst plots = " + ScriptJson(plots) + R"js(;
for (const plot of plots) {
  new Dygraph(document.getElementById(plot.id), plot.rows, {
    labels: plot.labels, xlabel: plot.labels[0], ylabel: plot.ylabel,
    drawPoints: plot.rows.length <= 64, strokeWidth: 1.5, legend: 'follow',
    colors: ['#1a73e8', '#c5221f', '#c5221f'],
    axes: {x: {axisLabelFormatter: x => Number.isInteger(x) ? String(x) : ''}},
    series: {'low limit': {strokePattern: [4, 4]}, 'high limit': {strokePattern: [4, 4]}}
  });
}
</script>
</body>
</html>
)js";
    return page;
}

}  // namespace q7report
