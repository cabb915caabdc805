// What a production line asks of its history, counted as manufacturing
// counts: over a span, how many units were tested; the first-pass yield (of
// the units whose first run ever falls in the span, those whose first run
// passed); the final yield (of the units tested in the span, those whose
// latest run up to the span's end passed); the retests and the marginal
// passes; which checks fail most; per station (a unit's first run at that
// station is its first attempt there) and per day. Or the runs of one unit.
#ifndef Q7REPORT_HISTORY_REPORT_H
#define Q7REPORT_HISTORY_REPORT_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "history_database.h"

namespace q7report {

// A date or time as ISO 8601 has it, in ms since 1970 (UTC): YYYY-MM-DD,
// YYYY-MM-DDTHH:MM, YYYY-MM-DDTHH:MM:SS and YYYY-MM-DDTHH:MM:SS.mmm, in UTC
// or with Z or an offset (+01:00, +0100, -05). Taken as the end of a span
// (`end`), a day or time reaches to the end of its last unit (a day to
// 23:59:59.999). Nothing for text that is no such time or an impossible one.
std::optional<long long> ParseHistoryTime(const std::string &text, bool end);

struct HistoryFilter {
    std::string since;  // as given: "" from the first run
    std::string until;  // as given, inclusive: "" up to the last run
    std::string unit;   // "": every unit; else that unit's runs
};

// The figures of a group of units over the span.
struct Yield {
    std::string group;          // a station, a day; "" for all
    long long units = 0;        // units tested in the span
    long long runs = 0;         // their runs in the span
    long long retests = 0;      // of those runs, the ones that were not a unit's first
    long long firstTested = 0;  // units whose first run falls in the span
    long long firstPassed = 0;  // ... and passed
    long long finallyPassed = 0;  // units whose latest run up to the span's end passed
    long long marginal = 0;       // runs in the span that passed with a marginal check
};

struct CheckFailures {
    std::string classname;
    std::string name;
    long long failures = 0;
};

struct History {
    Yield total;
    std::vector<Yield> stations;
    std::vector<Yield> days;              // every day from the first run's to the last's, those without runs too
    std::vector<CheckFailures> failures;  // the most first
    std::vector<SqlRow> unitRuns;  // with a unit: started, station, operator, verdict, marginal, failed checks, first failure
};

// Reads the history the filter asks for; false with `error`.
bool ReadHistory(HistoryDatabase &database, const HistoryFilter &filter, History &history, std::string &error);

// Aligned text for a terminal or a log.
std::string HistoryText(const History &history, const HistoryFilter &filter);
// A document for a dashboard.
nlohmann::ordered_json HistoryJson(const History &history, const HistoryFilter &filter, const std::string &version);
// A page with the yields over time, per station and the failures' Pareto
// chart (or a unit's runs), drawn by the plotting library given (inlined, so
// that it opens offline).
std::string HistoryPage(const History &history, const HistoryFilter &filter, const std::string &plotLibrary,
                        const std::string &plotStyle);

}  // namespace q7report

#endif
