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

// Every unit's runs up to the span's end, unit by unit in the order they
// started and then were appended (never by verdict), from one index
// (runs_by_unit) with no sort; and the failed checks of the span's runs
// counted by check, most first, from theirs (failed_checks).
const char kRunsStatement[] =
    "SELECT unit, COALESCE(station, '-'), started, passed, marginal FROM runs WHERE started <= $1"
    " ORDER BY unit, started, id";
// "+run_id" keeps the key's own index out: the failures' index serves.
const char kFailuresStatement[] =
    "SELECT class, name, COUNT(*) FROM checks"
    " WHERE passed = 0 AND +run_id IN (SELECT id FROM runs WHERE started >= $1 AND started <= $2)"
    " GROUP BY class, name ORDER BY 3 DESC, 1, 2 LIMIT 20";
// Over the whole history every check is in the span: the failures' index
// alone answers, without a look at the runs.
const char kAllFailuresStatement[] =
    "SELECT class, name, COUNT(*) FROM checks WHERE passed = 0 GROUP BY class, name ORDER BY 3 DESC, 1, 2 LIMIT 20";
const char kUnitRunsStatement[] =
    "SELECT r.started, COALESCE(r.station, '-'), COALESCE(r.operator, '-'),"
    " CASE WHEN r.passed = 1 THEN 'PASS' ELSE 'FAIL' END, r.marginal,"
    " (SELECT COUNT(*) FROM checks c WHERE c.run_id = r.id AND c.passed = 0),"
    " (SELECT c.class || ': ' || c.name FROM checks c WHERE c.run_id = r.id AND c.passed = 0"
    " ORDER BY c.position LIMIT 1)"
    " FROM runs r WHERE r.unit = $3 AND r.started >= $1 AND r.started <= $2 ORDER BY r.started, r.id";

long long Count(const SqlValue &value) { return value ? std::atoll(value->c_str()) : 0; }

// Days since 1970-01-01 of a civil date (proleptic Gregorian).
long long DaysFromCivil(long long year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<long long>(dayOfEra) - 719468;
}

bool IsLeap(long long year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

unsigned DaysInMonth(long long year, unsigned month)
{
    static const unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Reads `count` digits at `at` into `value`.
bool Digits(const std::string &text, size_t &at, size_t count, long long &value)
{
    value = 0;
    for (size_t end = at + count; at < end; at++) {
        if (at >= text.size() || !std::isdigit(static_cast<unsigned char>(text[at])))
            return false;
        value = value * 10 + (text[at] - '0');
    }
    return true;
}

// A run as the figures need it: its station and start, and its verdict.
struct Run {
    std::string station;
    std::string started;  // "2026-11-24T09:41:07.250Z": sorts as text
    bool passed;
    bool marginal;
};

// Adds a unit's runs of a group (all of them up to the span's end, in order)
// to the group's figures over the span [since, until]; `first` is the unit's
// first run ever, when the group has it: any other run is a retest.
void Tally(const std::vector<const Run *> &runs, const Run *first, const std::string &since, const std::string &until,
           Yield &yield)
{
    const Run *latest = nullptr;
    long long inSpan = 0;
    for (const Run *run : runs) {
        if (run->started > until)
            break;
        latest = run;
        if (run->started < since)
            continue;
        inSpan++;
        yield.retests += run != first;
        yield.marginal += run->passed && run->marginal;
    }
    if (inSpan == 0)
        return;
    yield.units++;
    yield.runs += inSpan;
    yield.finallyPassed += latest->passed;
    if (first != nullptr && first->started >= since && first->started <= until) {
        yield.firstTested++;
        yield.firstPassed += first->passed;
    }
}

std::string Percent(long long part, long long whole)
{
    if (whole == 0)
        return "-";
    char text[16];
    std::snprintf(text, sizeof text, "%.1f %%", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
    return text;
}

nlohmann::ordered_json Share(long long part, long long whole)
{
    return whole == 0 ? nlohmann::ordered_json(nullptr)
                      : nlohmann::ordered_json(static_cast<double>(part) / static_cast<double>(whole));
}

nlohmann::ordered_json YieldJson(const Yield &yield, const char *groupName)
{
    nlohmann::ordered_json entry;
    if (groupName != nullptr)
        entry[groupName] = yield.group;
    entry["units"] = yield.units;
    entry["runs"] = yield.runs;
    entry["retests"] = yield.retests;
    entry["first_tested"] = yield.firstTested;
    entry["first_passed"] = yield.firstPassed;
    entry["finally_passed"] = yield.finallyPassed;
    entry["marginal_runs"] = yield.marginal;
    entry["first_pass_yield"] = Share(yield.firstPassed, yield.firstTested);
    entry["final_yield"] = Share(yield.finallyPassed, yield.units);
    return entry;
}

std::string Span(const HistoryFilter &filter)
{
    return (filter.since.empty() ? std::string("the first run") : filter.since) + " to " +
           (filter.until.empty() ? std::string("the last run") : filter.until);
}

// The span's ends in the form the history keeps its start times in.
std::pair<std::string, std::string> SpanEnds(const HistoryFilter &filter)
{
    std::optional<long long> since = ParseHistoryTime(filter.since, false), until = ParseHistoryTime(filter.until, true);
    return {since ? UtcTime(*since) : std::string("0"), until ? UtcTime(*until) : std::string("9999")};
}

void YieldTable(std::string &text, const char *title, const char *column, const std::vector<Yield> &yields)
{
    char line[256];
    text += std::string("\n") + title + ":\n";
    std::snprintf(line, sizeof line, "  %-20s %8s %8s %8s %11s %9s %9s\n", column, "Units", "Runs", "Retests",
                  "First-pass", "Final", "Marginal");
    text += line;
    for (const Yield &yield : yields) {
        if (yield.units == 0)
            continue;
        std::snprintf(line, sizeof line, "  %-20s %8lld %8lld %8lld %11s %9s %9lld\n", yield.group.c_str(),
                      yield.units, yield.runs, yield.retests, Percent(yield.firstPassed, yield.firstTested).c_str(),
                      Percent(yield.finallyPassed, yield.units).c_str(), yield.marginal);
        text += line;
    }
}

// The day after `day` ("YYYY-MM-DD").
std::string NextDay(const std::string &day)
{
    std::optional<long long> start = ParseHistoryTime(day, false);
    return start ? UtcTime(*start + 86400000).substr(0, 10) : "9999-12-31";
}

}  // namespace

std::optional<long long> ParseHistoryTime(const std::string &text, bool end)
{
    long long year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
    size_t at = 0;
    if (!Digits(text, at, 4, year) || text[at++] != '-' || !Digits(text, at, 2, month) || text[at++] != '-' ||
        !Digits(text, at, 2, day))
        return std::nullopt;
    if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, static_cast<unsigned>(month)))
        return std::nullopt;
    long long unit = 86400000;  // how far an end reaches: the last unit given
    long long offset = 0;
    if (at < text.size()) {
        if (text[at] != 'T' && text[at] != 't' && text[at] != ' ')
            return std::nullopt;
        at++;
        if (!Digits(text, at, 2, hour) || text[at++] != ':' || !Digits(text, at, 2, minute) || hour > 23 ||
            minute > 59)
            return std::nullopt;
        unit = 60000;
        if (at < text.size() && text[at] == ':') {
            at++;
            if (!Digits(text, at, 2, second) || second > 59)
                return std::nullopt;
            unit = 1000;
            if (at < text.size() && text[at] == '.') {
                size_t first = ++at;
                while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])))
                    at++;
                if (at == first)
                    return std::nullopt;
                std::string fraction = (text.substr(first, at - first) + "00").substr(0, 3);
                millisecond = std::atoll(fraction.c_str());
                unit = 1;
            }
        }
        if (at < text.size() && (text[at] == 'Z' || text[at] == 'z')) {
            at++;
        } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
            const long long sign = text[at++] == '-' ? -1 : 1;
            long long hours = 0, minutes = 0;
            if (!Digits(text, at, 2, hours))
                return std::nullopt;
            if (at < text.size() && text[at] == ':')
                at++;
            if (at < text.size() && !Digits(text, at, 2, minutes))
                return std::nullopt;
            if (hours > 23 || minutes > 59)
                return std::nullopt;
            offset = sign * (hours * 60 + minutes) * 60000;
        }
    }
    if (at != text.size())
        return std::nullopt;
    long long time = DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * 86400000 +
                     ((hour * 60 + minute) * 60 + second) * 1000 + millisecond - offset;
    return end ? time + unit - 1 : time;
}

bool ReadHistory(HistoryDatabase &database, const HistoryFilter &filter, History &history, std::string &error)
{
    const auto [since, until] = SpanEnds(filter);
    std::vector<SqlValue> span = {since, until};
    if (!filter.unit.empty()) {
        span.push_back(filter.unit);
        return database.Query(kUnitRunsStatement, span, &history.unitRuns, error);
    }
    // The runs come unit by unit, in order.
    std::map<std::string, Yield> stations, days;
    std::string unit;
    std::vector<Run> runs;
    auto addUnit = [&] {
        std::vector<const Run *> all;
        std::map<std::string, std::vector<const Run *>> byStation;
        for (const Run &run : runs) {
            all.push_back(&run);
            byStation[run.station].push_back(&run);
        }
        const Run *first = all.front();
        Tally(all, first, since, until, history.total);
        // A station's first attempts are the units' first runs made there.
        for (const auto &[station, stationRuns] : byStation)
            Tally(stationRuns, first->station == station ? first : nullptr, since, until, stations[station]);
        std::string lastDay;
        for (const Run &run : runs) {
            std::string day = run.started.substr(0, 10);
            if (run.started < since || day == lastDay)
                continue;
            lastDay = day;
            Tally(all, first, std::max(since, day + "T00:00:00.000Z"), std::min(until, day + "T23:59:59.999Z"), days[day]);
        }
        runs.clear();
    };
    bool read = database.Query(kRunsStatement, {until},
                               [&](const std::vector<const char *> &row) {
                                   if (!runs.empty() && unit != row[0])
                                       addUnit();
                                   unit = row[0];
                                   runs.push_back({row[1], row[2], std::strcmp(row[3], "1") == 0,
                                                   row[4] != nullptr && std::strcmp(row[4], "0") != 0});
                               },
                               error);
    if (!read)
        return false;
    if (!runs.empty())
        addUnit();
    for (auto &[station, yield] : stations) {
        yield.group = station;
        history.stations.push_back(yield);
    }
    // Every day of the span's runs, a day without runs too: a gap, not a line across it.
    for (std::string day = days.empty() ? "" : days.begin()->first; !day.empty() && day <= days.rbegin()->first;
         day = NextDay(day)) {
        Yield yield = days.count(day) ? days[day] : Yield();
        yield.group = day;
        history.days.push_back(yield);
    }
    std::vector<SqlRow> rows;
    bool wholeHistory = filter.since.empty() && filter.until.empty();
    if (!(wholeHistory ? database.Query(kAllFailuresStatement, {}, &rows, error)
                       : database.Query(kFailuresStatement, {since, until}, &rows, error)))
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
        std::snprintf(line, sizeof line, "  %-25s %-12s %-16s %-8s %s\n", "Started (UTC)", "Station", "Operator",
                      "Verdict", "Failed checks");
        text += line;
        for (const SqlRow &run : history.unitRuns) {
            std::string failed = std::to_string(Count(run[5]));
            if (run[6])
                failed += " (first: " + *run[6] + ")";
            std::string verdict = run[3].value_or("");
            if (verdict == "PASS" && Count(run[4]) > 0)
                verdict = "MARGINAL";
            std::snprintf(line, sizeof line, "  %-25s %-12s %-16s %-8s %s\n", run[0].value_or("").c_str(),
                          run[1].value_or("").c_str(), run[2].value_or("").c_str(), verdict.c_str(), failed.c_str());
            text += line;
        }
        return text;
    }
    const Yield &total = history.total;
    text = "q7cal-report history, " + Span(filter) + "\n";
    std::snprintf(line, sizeof line, "  Units tested      %lld, in %lld runs, %lld of them retests\n", total.units,
                  total.runs, total.retests);
    text += line;
    std::snprintf(line, sizeof line, "  First-pass yield  %s (first run passed: %lld of %lld first tested)\n",
                  Percent(total.firstPassed, total.firstTested).c_str(), total.firstPassed, total.firstTested);
    text += line;
    std::snprintf(line, sizeof line, "  Final yield       %s (latest run passed: %lld of %lld)\n",
                  Percent(total.finallyPassed, total.units).c_str(), total.finallyPassed, total.units);
    text += line;
    std::snprintf(line, sizeof line, "  Marginal passes   %lld of %lld runs\n", total.marginal, total.runs);
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
    auto textOrNull = [](const std::string &text) {
        return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
    };
    nlohmann::ordered_json document = {{"history_schema_version", 2},
                                       {"report_version", version},
                                       {"since", textOrNull(filter.since)},
                                       {"until", textOrNull(filter.until)}};
    if (!filter.unit.empty()) {
        document["unit"] = filter.unit;
        document["runs"] = nlohmann::ordered_json::array();
        for (const SqlRow &run : history.unitRuns)
            document["runs"].push_back({{"started", run[0].value_or("")},
                                        {"station", run[1].value_or("")},
                                        {"operator", run[2].value_or("")},
                                        {"verdict", run[3].value_or("")},
                                        {"marginal_checks", Count(run[4])},
                                        {"failed_checks", Count(run[5])},
                                        {"first_failure", textOrNull(run[6].value_or(""))}});
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
        if (yield.units > 0)
            document["days"].push_back(YieldJson(yield, "day"));
    return document;
}

namespace {

const char kPageStyle[] = R"css(
body { font: 15px/1.4 system-ui, sans-serif; margin: 24px 32px; color: #1d2329; }
h1 { font-size: 22px; } h2 { font-size: 17px; margin-top: 28px; }
.figures { display: flex; gap: 40px; } .figure { font-size: 30px; font-weight: 700; }
.graph { width: 760px; height: 300px; }
table { border-collapse: collapse; } td, th { padding: 3px 14px 3px 0; text-align: left; }
td.number, th.number { text-align: right; font-variant-numeric: tabular-nums; }
.PASS { color: #17692f; } .FAIL { color: #b3261e; } .MARGINAL { color: #8a5a00; }
)css";

std::string PageHead(const std::string &title, const std::string &plotLibrary, const std::string &plotStyle)
{
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + HtmlEscape(title) +
           "</title>\n<style>\n" + plotStyle + kPageStyle + "</style>\n<script>\n" + plotLibrary +
           "\n</script>\n</head>\n<body>\n<h1>" + HtmlEscape(title) + "</h1>\n";
}

// One unit's runs, in order, with their verdicts and the checks that failed.
std::string UnitPage(const History &history, const HistoryFilter &filter, const std::string &plotLibrary,
                     const std::string &plotStyle)
{
    std::string page = PageHead("q7cal-report history of unit " + filter.unit + ", " + Span(filter), plotLibrary,
                                plotStyle);
    page += "<p id=\"runs\">" + std::to_string(history.unitRuns.size()) + " runs</p>\n"
            "<table>\n<tr><th>Started (UTC)</th><th>Station</th><th>Operator</th><th>Verdict</th>"
            "<th class=\"number\">Failed checks</th><th>First failed check</th></tr>\n";
    for (const SqlRow &run : history.unitRuns) {
        std::string verdict = run[3].value_or("");
        if (verdict == "PASS" && Count(run[4]) > 0)
            verdict = "MARGINAL";
        page += "<tr><td>" + HtmlEscape(run[0].value_or("")) + "</td><td>" + HtmlEscape(run[1].value_or("")) +
                "</td><td>" + HtmlEscape(run[2].value_or("")) + "</td><td class=\"" + verdict + "\">" + verdict +
                "</td><td class=\"number\">" + std::to_string(Count(run[5])) + "</td><td>" +
                HtmlEscape(run[6].value_or("")) + "</td></tr>\n";
    }
    return page + "</table>\n</body>\n</html>\n";
}

}  // namespace

std::string HistoryPage(const History &history, const HistoryFilter &filter, const std::string &plotLibrary,
                        const std::string &plotStyle)
{
    if (!filter.unit.empty())
        return UnitPage(history, filter, plotLibrary, plotStyle);
    // A day without runs has no yield: a gap in the lines.
    nlohmann::ordered_json days = nlohmann::ordered_json::array();
    for (const Yield &day : history.days)
        days.push_back({day.group, day.firstTested ? nlohmann::ordered_json(100.0 * static_cast<double>(day.firstPassed) /
                                                                            static_cast<double>(day.firstTested))
                                                   : nlohmann::ordered_json(nullptr),
                        day.units ? nlohmann::ordered_json(100.0 * static_cast<double>(day.finallyPassed) /
                                                           static_cast<double>(day.units))
                                  : nlohmann::ordered_json(nullptr)});
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
    std::string stations;
    for (const Yield &station : history.stations)
        stations += "<tr><td>" + HtmlEscape(station.group) + "</td><td class=\"number\">" +
                    std::to_string(station.units) + "</td><td class=\"number\">" + std::to_string(station.runs) +
                    "</td><td class=\"number\">" + std::to_string(station.retests) + "</td><td class=\"number\">" +
                    Percent(station.firstPassed, station.firstTested) + "</td><td class=\"number\">" +
                    Percent(station.finallyPassed, station.units) + "</td><td class=\"number\">" +
                    std::to_string(station.marginal) + "</td></tr>\n";
    std::string data = ScriptJson({{"days", days}, {"pareto", pareto}});

    const Yield &total = history.total;
    std::string page = PageHead("q7cal-report history, " + Span(filter), plotLibrary, plotStyle);
    page += "<div class=\"figures\">\n<div><div class=\"figure\" id=\"units\">" + std::to_string(total.units) +
            "</div>units tested</div>\n<div><div class=\"figure\" id=\"first-pass\">" +
            Percent(total.firstPassed, total.firstTested) +
            "</div>first-pass yield</div>\n<div><div class=\"figure\" id=\"final\">" +
            Percent(total.finallyPassed, total.units) + "</div>final yield</div>\n<div><div class=\"figure\" "
            "id=\"retests\">" + std::to_string(total.retests) + "</div>retests</div>\n<div><div class=\"figure\" "
            "id=\"marginal\">" + std::to_string(total.marginal) + "</div>marginal passes</div>\n</div>\n"
            "<h2>Yield per day</h2>\n<div class=\"graph\" id=\"yield\"></div>\n"
            "<h2>By station</h2>\n<table id=\"stations\">\n<tr><th>Station</th><th class=\"number\">Units</th>"
            "<th class=\"number\">Runs</th><th class=\"number\">Retests</th><th class=\"number\">First-pass</th>"
            "<th class=\"number\">Final</th><th class=\"number\">Marginal</th></tr>\n" + stations + "</table>\n"
            "<h2>Failures by check</h2>\n<div class=\"graph\" id=\"pareto\"></div>\n"
            "<table>\n<tr><th>Rank</th><th>Failures</th><th>Check</th></tr>\n" + rows + "</table>\n"
            "<script>\nconst data = " + data + R"js(;
new Dygraph(document.getElementById('yield'), data.days.map(d => [new Date(d[0] + 'T00:00:00Z'), d[1], d[2]]), {
  labels: ['day', 'first-pass yield %', 'final yield %'], ylabel: '%', valueRange: [0, 105],
  drawPoints: true, strokeWidth: 2, colors: ['#c26a00', '#1e8e3e'], legend: 'always'
});
// The failures as bars, largest first, with their cumulative share as a line
// on an axis of its own, 0 to 100 %.
function bars(e) {
  const pen = e.drawingContext, bottom = e.dygraph.toDomYCoord(0);
  let width = 40;
  for (let i = 1; i < e.points.length; i++) width = Math.min(width, e.points[i].canvasx - e.points[i - 1].canvasx);
  width = Math.floor(width * 2 / 3);
  pen.fillStyle = e.color;
  for (const p of e.points) pen.fillRect(p.canvasx - width / 2, p.canvasy, width, bottom - p.canvasy);
}
const percentTicks = () => [0, 20, 40, 60, 80, 100].map(v => ({v: v, label: v + ' %'}));
new Dygraph(document.getElementById('pareto'), data.pareto, {
  labels: ['rank', 'failures', 'cumulative %'], xlabel: 'check (rank)', ylabel: 'failures', y2label: '%',
  series: {'failures': {plotter: bars}, 'cumulative %': {axis: 'y2', drawPoints: true}},
  axes: {x: {axisLabelFormatter: x => Number.isInteger(x) ? String(x) : ''},
         y2: {valueRange: [0, 105], independentTicks: true, ticker: percentTicks}},
  includeZero: true, colors: ['#c5221f', '#1a73e8'], legend: 'always', dateWindow: [0.3, data.pareto.length + 0.7]
});
</script>
</body>
</html>
)js";
    return page;
}

}  // namespace q7report
