#include "history_report.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include "report_writers.h"

namespace q7report {
namespace {

// The runs of a span unit by unit in the order they started, for their
// units' yields, and the failed checks of its runs counted by check, most
// first. Over the whole history they come from an index alone each
// (runs_by_unit, failed_checks), with no sort and no lookup, however many
// runs there are; over a span, through its runs (runs_by_start).
struct SpanStatements {
    const char *runs;
    const char *failures;
};
const SpanStatements kWholeHistory = {
    "SELECT unit, COALESCE(station, '-'), substr(started, 1, 10), passed FROM runs ORDER BY unit, started",
    "SELECT class, name, COUNT(*) FROM checks WHERE passed = 0 GROUP BY class, name ORDER BY 3 DESC, 1, 2 LIMIT 20",
};
const SpanStatements kSpan = {
    "SELECT unit, COALESCE(station, '-'), substr(started, 1, 10), passed FROM runs"
    " WHERE started >= $1 AND started <= $2 ORDER BY unit, started",
    // "+run_id" keeps the key's own index out: the failures' index serves.
    "SELECT class, name, COUNT(*) FROM checks"
    " WHERE passed = 0 AND +run_id IN (SELECT id FROM runs WHERE started >= $1 AND started <= $2)"
    " GROUP BY class, name ORDER BY 3 DESC, 1, 2 LIMIT 20",
};

const char kUnitRunsStatement[] =
    "SELECT r.started, COALESCE(r.station, '-'), COALESCE(r.operator, '-'),"
    " CASE WHEN r.passed = 1 THEN 'PASS' ELSE 'FAIL' END,"
    " (SELECT COUNT(*) FROM checks c WHERE c.run_id = r.id AND c.passed = 0),"
    " (SELECT c.class || ': ' || c.name FROM checks c WHERE c.run_id = r.id AND c.passed = 0"
    " ORDER BY c.position LIMIT 1)"
    " FROM runs r WHERE r.unit = $3 AND r.started >= $1 AND r.started <= $2 ORDER BY r.started, r.id";

long long Count(const SqlValue &value) { return value ? std::atoll(value->c_str()) : 0; }

// A run as the yields need it: its station and day, and its verdict.
struct Run {
    std::string station;
    std::string day;
    bool passed;
};

// Adds a unit's runs (in the order they started) to the yields of the groups
// they fall in: in a group, the unit counts once, passed first when its first
// run there passed, and passed finally when its last run there did.
void AddUnit(const std::vector<Run> &runs, const std::string Run::*group, std::map<std::string, Yield> &yields)
{
    std::map<std::string, std::pair<const Run *, const Run *>> seen;  // the first and last run in each group
    for (const Run &run : runs) {
        auto entry = seen.try_emplace(group ? run.*group : std::string(), &run, &run).first;
        entry->second.second = &run;
    }
    for (const auto &[key, first] : seen) {
        Yield &yield = yields[key];
        yield.group = key;
        yield.units++;
        yield.firstPassed += first.first->passed;
        yield.finallyPassed += first.second->passed;
    }
    for (const Run &run : runs)
        yields[group ? run.*group : std::string()].runs++;
}

std::string Percent(long long part, long long whole)
{
    if (whole == 0)
        return "-";
    char text[16];
    std::snprintf(text, sizeof text, "%.1f %%", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
    return text;
}

nlohmann::ordered_json YieldJson(const Yield &yield, const char *groupName)
{
    nlohmann::ordered_json entry;
    if (groupName != nullptr)
        entry[groupName] = yield.group;
    entry["units"] = yield.units;
    entry["runs"] = yield.runs;
    entry["first_passed"] = yield.firstPassed;
    entry["finally_passed"] = yield.finallyPassed;
    auto share = [&yield](long long part) {
        return yield.units == 0 ? nlohmann::ordered_json(nullptr)
                                : nlohmann::ordered_json(static_cast<double>(part) / static_cast<double>(yield.units));
    };
    entry["first_pass_yield"] = share(yield.firstPassed);
    entry["final_yield"] = share(yield.finallyPassed);
    return entry;
}

std::string Span(const HistoryFilter &filter)
{
    return (filter.since.empty() ? std::string("the first run") : filter.since) + " to " +
           (filter.until.empty() ? std::string("the last run") : filter.until);
}

void YieldTable(std::string &text, const char *title, const char *column, const std::vector<Yield> &yields)
{
    char line[256];
    text += std::string("\n") + title + ":\n";
    std::snprintf(line, sizeof line, "  %-20s %8s %8s %11s %9s\n", column, "Units", "Runs", "First-pass", "Final");
    text += line;
    for (const Yield &yield : yields) {
        std::snprintf(line, sizeof line, "  %-20s %8lld %8lld %11s %9s\n", yield.group.c_str(), yield.units,
                      yield.runs, Percent(yield.firstPassed, yield.units).c_str(),
                      Percent(yield.finallyPassed, yield.units).c_str());
        text += line;
    }
}

}  // namespace

bool IsHistoryTime(const std::string &text)
{
    const std::string shape = "dddd-dd-ddTdd:dd:dd";
    if (text.size() != 10 && text.size() != shape.size())
        return false;
    for (size_t i = 0; i < text.size(); i++)
        if (shape[i] == 'd' ? !std::isdigit(static_cast<unsigned char>(text[i])) : text[i] != shape[i])
            return false;
    return true;
}

bool ReadHistory(HistoryDatabase &database, const HistoryFilter &filter, History &history, std::string &error)
{
    // Times are stored as "YYYY-MM-DDTHH:MM:SSZ", which sort as text; a day
    // given as --until takes in the whole day.
    const std::string until = filter.until.empty() ? "9999" : filter.until + (filter.until.size() == 10 ? "T99" : "Z");
    std::vector<SqlValue> span = {filter.since.empty() ? "0" : filter.since, until};
    if (!filter.unit.empty()) {
        span.push_back(filter.unit);
        return database.Query(kUnitRunsStatement, span, &history.unitRuns, error);
    }
    // The runs come unit by unit, in the order they started.
    std::map<std::string, Yield> total, stations, days;
    std::string unit;
    std::vector<Run> runs;
    auto addUnit = [&] {
        AddUnit(runs, nullptr, total);
        AddUnit(runs, &Run::station, stations);
        AddUnit(runs, &Run::day, days);
        runs.clear();
    };
    const bool whole = filter.since.empty() && filter.until.empty();
    const SpanStatements &statements = whole ? kWholeHistory : kSpan;
    if (whole)
        span.clear();
    bool read = database.Query(statements.runs, span,
                               [&](const std::vector<const char *> &row) {
                                   if (!runs.empty() && unit != row[0])
                                       addUnit();
                                   unit = row[0];
                                   runs.push_back({row[1], row[2], std::strcmp(row[3], "1") == 0});
                               },
                               error);
    if (!read)
        return false;
    if (!runs.empty())
        addUnit();
    if (!total.empty())
        history.total = total.begin()->second;
    for (const auto &[key, yield] : stations)
        history.stations.push_back(yield);
    for (const auto &[key, yield] : days)
        history.days.push_back(yield);
    std::vector<SqlRow> rows;
    if (!database.Query(statements.failures, span, &rows, error))
        return false;
    for (const SqlRow &row : rows)
        history.failures.push_back({row[0].value_or(""), row[1].value_or(""), Count(row[2])});
    return true;
}

std::string HistoryText(const History &history, const HistoryFilter &filter)
{
    char line[512];
    std::string text;
    if (!filter.unit.empty()) {
        text = "q7cal-report history of unit " + filter.unit + ", " + Span(filter) + ": " +
               std::to_string(history.unitRuns.size()) + " runs\n";
        std::snprintf(line, sizeof line, "  %-21s %-12s %-16s %-7s %s\n", "Started (UTC)", "Station", "Operator",
                      "Verdict", "Failed checks");
        text += line;
        for (const SqlRow &run : history.unitRuns) {
            std::string failed = std::to_string(Count(run[4]));
            if (run[5])
                failed += " (first: " + *run[5] + ")";
            std::snprintf(line, sizeof line, "  %-21s %-12s %-16s %-7s %s\n", run[0].value_or("").c_str(),
                          run[1].value_or("").c_str(), run[2].value_or("").c_str(), run[3].value_or("").c_str(),
                          failed.c_str());
            text += line;
        }
        return text;
    }
    const Yield &total = history.total;
    text = "q7cal-report history, " + Span(filter) + "\n";
    std::snprintf(line, sizeof line, "  Units tested      %lld, in %lld runs\n", total.units, total.runs);
    text += line;
    std::snprintf(line, sizeof line, "  First-pass yield  %s (first run passed: %lld of %lld)\n",
                  Percent(total.firstPassed, total.units).c_str(), total.firstPassed, total.units);
    text += line;
    std::snprintf(line, sizeof line, "  Final yield       %s (last run passed: %lld of %lld)\n",
                  Percent(total.finallyPassed, total.units).c_str(), total.finallyPassed, total.units);
    text += line;
    text += "\nFailures by check, the most first:\n";
    std::snprintf(line, sizeof line, "  %8s  %s\n", "Failures", "Check");
    text += line;
    for (const CheckFailures &check : history.failures) {
        std::snprintf(line, sizeof line, "  %8lld  %s: %s\n", check.failures, check.classname.c_str(),
                      check.name.c_str());
        text += line;
    }
    YieldTable(text, "By station", "Station", history.stations);
    YieldTable(text, "By day", "Day", history.days);
    return text;
}

nlohmann::ordered_json HistoryJson(const History &history, const HistoryFilter &filter, const std::string &version)
{
    nlohmann::ordered_json document = {{"history_schema_version", 1},
                                       {"report_version", version},
                                       {"since", filter.since.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(filter.since)},
                                       {"until", filter.until.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(filter.until)}};
    if (!filter.unit.empty()) {
        document["unit"] = filter.unit;
        document["runs"] = nlohmann::ordered_json::array();
        for (const SqlRow &run : history.unitRuns)
            document["runs"].push_back({{"started", run[0].value_or("")},
                                        {"station", run[1].value_or("")},
                                        {"operator", run[2].value_or("")},
                                        {"verdict", run[3].value_or("")},
                                        {"failed_checks", Count(run[4])},
                                        {"first_failure", run[5] ? nlohmann::ordered_json(*run[5]) : nullptr}});
        return document;
    }
    document["total"] = YieldJson(history.total, nullptr);
    document["failures"] = nlohmann::ordered_json::array();
    for (const CheckFailures &check : history.failures)
        document["failures"].push_back({{"class", check.classname}, {"name", check.name}, {"failures", check.failures}});
    document["stations"] = nlohmann::ordered_json::array();
    for (const Yield &yield : history.stations)
        document["stations"].push_back(YieldJson(yield, "station"));
    document["days"] = nlohmann::ordered_json::array();
    for (const Yield &yield : history.days)
        document["days"].push_back(YieldJson(yield, "day"));
    return document;
}

std::string HistoryPage(const History &history, const HistoryFilter &filter, const std::string &plotLibrary,
                        const std::string &plotStyle)
{
    nlohmann::ordered_json days = nlohmann::ordered_json::array();
    for (const Yield &day : history.days)
        if (day.units > 0)
            days.push_back({day.group, 100.0 * static_cast<double>(day.firstPassed) / static_cast<double>(day.units),
                            100.0 * static_cast<double>(day.finallyPassed) / static_cast<double>(day.units)});
    nlohmann::ordered_json pareto = nlohmann::ordered_json::array();
    long long all = 0, cumulative = 0;
    for (const CheckFailures &check : history.failures)
        all += check.failures;
    std::string rows;
    for (size_t i = 0; i < history.failures.size(); i++) {
        const CheckFailures &check = history.failures[i];
        cumulative += check.failures;
        pareto.push_back({i + 1, check.failures, 100.0 * static_cast<double>(cumulative) / static_cast<double>(all)});
        rows += "<tr><td class=\"number\">" + std::to_string(i + 1) + "</td><td class=\"number\">" +
                std::to_string(check.failures) + "</td><td>" + HtmlEscape(check.classname + ": " + check.name) +
                "</td></tr>\n";
    }
    std::string data = ScriptJson({{"days", days}, {"pareto", pareto}});

    const Yield &total = history.total;
    std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<title>q7cal-report history</title>\n<style>\n" +
                       plotStyle + R"css(
body { font: 15px/1.4 system-ui, sans-serif; margin: 24px 32px; color: #1d2329; }
h1 { font-size: 22px; } h2 { font-size: 17px; margin-top: 28px; }
.figures { display: flex; gap: 40px; } .figure { font-size: 30px; font-weight: 700; }
.graph { width: 760px; height: 300px; }
table { border-collapse: collapse; } td, th { padding: 3px 14px 3px 0; text-align: left; }
td.number { text-align: right; font-variant-numeric: tabular-nums; }
)css" + "</style>\n<script>\n" + plotLibrary +
                       "\n</script>\n</head>\n<body>\n<h1>q7cal-report history, " + HtmlEscape(Span(filter)) +
                       "</h1>\n<div class=\"figures\">\n<div><div class=\"figure\" id=\"units\">" +
                       std::to_string(total.units) + "</div>units tested</div>\n<div><div class=\"figure\" "
                       "id=\"first-pass\">" + Percent(total.firstPassed, total.units) +
                       "</div>first-pass yield</div>\n<div><div class=\"figure\" id=\"final\">" +
                       Percent(total.finallyPassed, total.units) + "</div>final yield</div>\n</div>\n"
                       "<h2>Yield over time</h2>\n<div class=\"graph\" id=\"yield\"></div>\n"
                       "<h2>Failures by check</h2>\n<div class=\"graph\" id=\"pareto\"></div>\n"
                       "<table>\n<tr><th>Rank</th><th>Failures</th><th>Check</th></tr>\n" +
                       rows + "</table>\n<script>\nconst data = " + data + R"js(;
new Dygraph(document.getElementById('yield'), data.days.map(d => [new Date(d[0] + 'T00:00:00Z'), d[1], d[2]]), {
  labels: ['day', 'first-pass yield %', 'final yield %'], ylabel: '%', valueRange: [0, 102],
  drawPoints: true, strokeWidth: 2, colors: ['#c26a00', '#1e8e3e'], legend: 'always'
});
// The failures as bars, largest first, with their cumulative share as a line.
function bars(e) {
  const pen = e.drawingContext, bottom = e.dygraph.toDomYCoord(0);
  let width = 40;
  for (let i = 1; i < e.points.length; i++) width = Math.min(width, e.points[i].canvasx - e.points[i - 1].canvasx);
  width = Math.floor(width * 2 / 3);
  pen.fillStyle = e.color;
  for (const p of e.points) pen.fillRect(p.canvasx - width / 2, p.canvasy, width, bottom - p.canvasy);
}
new Dygraph(document.getElementById('pareto'), data.pareto, {
  labels: ['rank', 'failures', 'cumulative %'], xlabel: 'check (rank)', ylabel: 'failures', y2label: '%',
  series: {'failures': {plotter: bars}, 'cumulative %': {axis: 'y2', drawPoints: true}},
  axes: {x: {axisLabelFormatter: x => Number.isInteger(x) ? String(x) : ''}, y2: {valueRange: [0, 102]}},
  includeZero: true, colors: ['#c5221f', '#1a73e8'], legend: 'always', dateWindow: [0.3, data.pareto.length + 0.7]
});
</script>
</body>
</html>
)js";
    return page;
}

}  // namespace q7report
