// What q7cal-report writes of its judged units: a summary line and failure
// lines for the console, and JUnit XML, JSON records and an HTML page, each
// written unit by unit as the units are judged, so that a shift of a
// thousand units takes no more memory than one.
#ifndef Q7REPORT_REPORT_WRITERS_H
#define Q7REPORT_REPORT_WRITERS_H

#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "unit_record.h"

namespace q7report {

// The JSON records' layout; a new member keeps it, a changed or removed one
// raises it.
inline constexpr int kJsonSchemaVersion = 2;

// "q7cal-report: PASS unit 02:1A:C7:30:5E:81 (simulated device) from standard
// input: 65 checks: 62 PASS, 0 MARGINAL, 0 FAIL, 3 expected errors; 76 measurements"
std::string SummaryLine(const UnitRecord &record, const RunContext &context);

// One line per failed or marginal check, for standard error.
std::string FailureLines(const UnitRecord &record);

// The verdict of a batch: ERROR when an input could not be judged, else FAIL
// when a unit failed (or there was none), else PASS.
class BatchVerdict {
public:
    void Add(const UnitRecord &record);
    const char *Word() const;
    size_t Units() const { return units_; }

private:
    size_t units_ = 0;
    bool failed_ = false;
    bool error_ = false;
};

// A <testsuites> document with a <testsuite> per unit, valid by the strict
// JUnit schema of Apache Ant; an input that could not be judged is a suite
// with one <error>.
class JunitWriter {
public:
    JunitWriter(std::ostream &out, const RunContext &context);
    void Add(const UnitRecord &record);
    void End();

private:
    std::ostream &out_;
    const RunContext &context_;
    size_t units_ = 0;
};

// Every unit's record, then the batch's verdict and totals.
class JsonWriter {
public:
    JsonWriter(std::ostream &out, const RunContext &context);
    void Add(const UnitRecord &record);
    void End(const BatchVerdict &verdict);

private:
    std::ostream &out_;
    const RunContext &context_;
    size_t units_ = 0;
};

// One self-contained page: the verdict and a table of the units, then each
// unit's identity, checks (failures first), measurements and a plot of every
// list of values, drawn when the unit comes into view; the plotting script
// is inlined so that the page opens offline. The units' sections wait in a
// scratch file until the verdict and the table that head them are known.
class HtmlWriter {
public:
    HtmlWriter(std::ostream &out, const RunContext &context, const std::string &plotLibrary,
               const std::string &plotStyle);
    ~HtmlWriter();
    HtmlWriter(const HtmlWriter &) = delete;
    HtmlWriter &operator=(const HtmlWriter &) = delete;
    // False when the scratch file could not be made or written.
    bool Add(const UnitRecord &record);
    bool End(const BatchVerdict &verdict);

private:
    std::ostream &out_;
    const RunContext &context_;
    const std::string &plotLibrary_;
    const std::string &plotStyle_;
    std::FILE *sections_;
    std::string unitRows_;  // the table of units: a short row each
    size_t units_ = 0;
};

// One unit's record: identity, context, verdict, checks and measurements.
nlohmann::ordered_json UnitJson(const UnitRecord &record, const RunContext &context);

// Whole documents at once, for a few units.
std::string JunitXml(const std::vector<UnitRecord> &records, const RunContext &context);
std::string JsonDocument(const std::vector<UnitRecord> &records, const RunContext &context);
std::string HtmlPage(const std::vector<UnitRecord> &records, const RunContext &context,
                     const std::string &plotLibrary, const std::string &plotStyle);

// Text for an HTML page: markup characters escaped, control characters as
// their pictures.
std::string HtmlEscape(const std::string &text);
// JSON to stand inside a <script> element, which "</" would end.
std::string ScriptJson(const nlohmann::ordered_json &value);

}  // namespace q7report

#endif
