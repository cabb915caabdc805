// What a production line asks of its history: how many units were tested,
// how many passed their first run and their last (a unit tested again is a
// new run of the same unit), which checks fail most, per station and per
// day, over a span of days; or the runs of one unit.
#ifndef Q7REPORT_HISTORY_REPORT_H
#define Q7REPORT_HISTORY_REPORT_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "history_database.h"

namespace q7report {

struct HistoryFilter {
    std::string since;  // "YYYY-MM-DD" or a UTC time "YYYY-MM-DDTHH:MM:SS"; "" from the first run
    std::string until;  // the same, inclusive; "" up to the last run
    std::string unit;   // "": every unit; else that unit's runs
};

// True for a date or time --since and --until take.
bool IsHistoryTime(const std::string &text);

// Units, their first-pass and final yield, over the units' runs in a group.
struct Yield {
    std::string group;  // a station, a day; "" for all
    long long units = 0;
    long long runs = 0;
    long long firstPassed = 0;  // units whose first run passed
    long long finallyPassed = 0;  // units whose last run passed
};

struct CheckFailures {
    std::string classname;
    std::string name;
    long long failures = 0;
};

struct History {
    Yield total;
    std::vector<Yield> stations;
    std::vector<Yield> days;
    std::vector<CheckFailures> failures;  // the most first
    std::vector<SqlRow> unitRuns;         // with a unit: started, station, operator, verdict, failed checks
};

// Reads the history the filter asks for; false with `error`.
bool ReadHistory(HistoryDatabase &database, const HistoryFilter &filter, History &history, std::string &error);

// Aligned text for a terminal or a log.
std::string HistoryText(const History &history, const HistoryFilter &filter);
// A document for a dashboard.
nlohmann::ordered_json HistoryJson(const History &history, const HistoryFilter &filter, const std::string &version);
// A page with the yield over time and the failures' Pareto chart, drawn by
// the plotting library given (inlined, so that it opens offline).
std::string HistoryPage(const History &history, const HistoryFilter &filter, const std::string &plotLibrary,
                        const std::string &plotStyle);

}  // namespace q7report

#endif
