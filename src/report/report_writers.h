// What q7cal-report writes of its judged units: a summary line and failure
// lines for the console, JUnit XML, JSON records and an HTML page.
#ifndef Q7REPORT_REPORT_WRITERS_H
#define Q7REPORT_REPORT_WRITERS_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "unit_record.h"

namespace q7report {

// The JSON records' layout; a new member keeps it, a changed or removed one
// raises it.
inline constexpr int kJsonSchemaVersion = 1;

// "q7cal-report: PASS unit 02:1A:C7:30:5E:81 (simulated device) from standard
// input: 36 checks: 36 PASS, 0 FAIL; 3 expected errors; 0 commands: ..."
std::string SummaryLine(const UnitRecord &record, const RunContext &context);

// One line per failed check, for standard error.
std::string FailureLines(const UnitRecord &record);

// A <testsuites> document with a <testsuite> per unit, valid by the strict
// JUnit schema of Apache Ant.
std::string JunitXml(const std::vector<UnitRecord> &records, const RunContext &context);

// One unit's record: identity, context, verdict, checks and measurements.
nlohmann::ordered_json UnitJson(const UnitRecord &record, const RunContext &context);

// Every unit's record, under the schema version and the report's version.
std::string JsonDocument(const std::vector<UnitRecord> &records, const RunContext &context);

// Text for an HTML page, its markup characters escaped.
std::string HtmlEscape(const std::string &text);
// JSON to stand inside a <script> element, which "</" would end.
std::string ScriptJson(const nlohmann::ordered_json &value);

// One self-contained page: the verdict, each unit's identity, checks (failures
// first), measurements and a plot of every list of values; `plotLibrary` is
// the plotting script, inlined so that the page opens offline.
std::string HtmlPage(const std::vector<UnitRecord> &records, const RunContext &context,
                     const std::string &plotLibrary, const std::string &plotStyle);

}  // namespace q7report

#endif
