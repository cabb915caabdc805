#include "report_writers.h"

#include <climits>
#include <cstdio>
#include <sstream>
#include <utility>

#include <tinyxml2.h>

#include "text_safety.h"

namespace q7report {
namespace {

std::string Seconds(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

const char *Result(const Check &check) { return !check.passed ? "FAIL" : check.marginal ? "MARGINAL" : "PASS"; }

// A JSON text, or null where the transcript or the command line gave none.
nlohmann::ordered_json TextOrNull(const std::string &text)
{
    return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

const char *DeviceWord(const UnitRecord &record)
{
    std::optional<bool> simulated = record.Simulated();
    return !simulated ? "unknown" : *simulated ? "yes" : "no";
}

// The testsuite's properties: who the unit is, where and by what it was
// judged, and each check that passed only marginally.
std::vector<std::pair<std::string, std::string>> Properties(const UnitRecord &record, const RunContext &context)
{
    std::vector<std::pair<std::string, std::string>> properties = {
        {"unit", UnitName(record, context)}, {"station", context.station}, {"operator", context.operatorName}};
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        properties.emplace_back(kIdentityFields[i].key, record.identity[i]);
    properties.emplace_back("simulated", DeviceWord(record));
    properties.emplace_back("source", record.source);
    properties.emplace_back("report_version", context.reportVersion);
    for (const Check &check : record.checks)
        if (check.passed && check.marginal)
            properties.emplace_back("marginal", check.classname + ": " + check.name + ": " + check.message);
    return properties;
}

// Text as XML carries it.
std::string Xml(const std::string &text) { return VisibleControls(text); }

std::string Dump(const nlohmann::ordered_json &value, int indent)
{
    return value.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace

std::string SummaryLine(const UnitRecord &record, const RunContext &context)
{
    Totals totals = record.Count();
    std::optional<bool> simulated = record.Simulated();
    return VisibleControls(std::string("q7cal-report: ") + record.Verdict() + " unit " + UnitName(record, context) +
                           (!simulated ? " (device not identified)" : *simulated ? " (simulated device)" : "") +
                           " from " + record.source + ": " + std::to_string(totals.checks) + " checks: " +
                           std::to_string(totals.passed) + " PASS, " + std::to_string(totals.marginal) + " MARGINAL, " +
                           std::to_string(totals.failed) + " FAIL, " + std::to_string(totals.expectedErrors) +
                           " expected errors; " + std::to_string(record.measurements.size()) + " measurements") +
           "\n";
}

std::string FailureLines(const UnitRecord &record)
{
    std::string lines;
    for (const Check &check : record.checks)
        if (!check.passed || check.marginal)
            lines += VisibleControls(std::string("q7cal-report: ") + Result(check) + " " + record.source + ": " +
                                     check.classname + ": " + check.name + ": " + check.message + " (line " +
                                     std::to_string(check.line) + ")") +
                     "\n";
    return lines;
}

void BatchVerdict::Add(const UnitRecord &record)
{
    units_++;
    error_ = error_ || !record.error.empty();
    failed_ = failed_ || !record.Passed();
}

const char *BatchVerdict::Word() const { return error_ ? "ERROR" : failed_ || units_ == 0 ? "FAIL" : "PASS"; }

// ---- JUnit ----

JunitWriter::JunitWriter(std::ostream &out, const RunContext &context) : out_(out), context_(context)
{
    out_ << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n";
}

void JunitWriter::Add(const UnitRecord &record)
{
    tinyxml2::XMLDocument document;
    tinyxml2::XMLElement *suite = document.NewElement("testsuite");
    document.InsertEndChild(suite);
    Totals totals = record.Count();
    // Each unit a suite of its own: its name says which unit and which transcript.
    suite->SetAttribute("name", Xml(UnitName(record, context_) + " (" + record.source + ")").c_str());
    suite->SetAttribute("package", "q7cal");
    suite->SetAttribute("id", static_cast<int64_t>(units_++));
    suite->SetAttribute("timestamp", IsoTime(record.startMs).c_str());
    suite->SetAttribute("hostname", Xml(context_.hostname).c_str());
    suite->SetAttribute("tests", static_cast<int64_t>(record.error.empty() ? totals.checks : 1));
    suite->SetAttribute("failures", static_cast<int64_t>(totals.failed));
    suite->SetAttribute("errors", record.error.empty() ? 0 : 1);
    suite->SetAttribute("time", Seconds(record.seconds).c_str());

    tinyxml2::XMLElement *properties = suite->InsertNewChildElement("properties");
    for (const auto &[name, value] : Properties(record, context_)) {
        tinyxml2::XMLElement *property = properties->InsertNewChildElement("property");
        property->SetAttribute("name", name.c_str());
        property->SetAttribute("value", Xml(value).c_str());
    }
    if (!record.error.empty()) {
        tinyxml2::XMLElement *testcase = suite->InsertNewChildElement("testcase");
        testcase->SetAttribute("name", "transcript judged");
        testcase->SetAttribute("classname", "input");
        testcase->SetAttribute("time", Seconds(0).c_str());
        tinyxml2::XMLElement *error = testcase->InsertNewChildElement("error");
        error->SetAttribute("message", Xml(record.error).c_str());
        error->SetAttribute("type", "unreadable");
    }
    for (const Check &check : record.checks) {
        tinyxml2::XMLElement *testcase = suite->InsertNewChildElement("testcase");
        testcase->SetAttribute("name", Xml(check.name).c_str());
        testcase->SetAttribute("classname", Xml(check.classname).c_str());
        testcase->SetAttribute("time", Seconds(check.seconds).c_str());
        if (!check.passed) {
            tinyxml2::XMLElement *failure = testcase->InsertNewChildElement("failure");
            failure->SetAttribute("message", Xml(check.message).c_str());
            failure->SetAttribute("type", Xml(check.type).c_str());
            failure->SetText(Xml(check.evidence).c_str());
        }
    }
    suite->InsertNewChildElement("system-out")->SetText(Xml(record.transcript).c_str());
    suite->InsertNewChildElement("system-err")->SetText(Xml(FailureLines(record)).c_str());
    tinyxml2::XMLPrinter printer(nullptr, false, 1);
    document.Print(&printer);
    const std::string suiteText = printer.CStr();
    out_ << suiteText << (!suiteText.empty() && suiteText.back() == '\n' ? "" : "\n");
}

void JunitWriter::End() { out_ << "</testsuites>\n"; }

// ---- JSON ----

nlohmann::ordered_json UnitJson(const UnitRecord &record, const RunContext &context)
{
    nlohmann::ordered_json identity;
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        identity[kIdentityFields[i].key] = TextOrNull(record.identity[i]);
    Totals totals = record.Count();
    std::optional<bool> simulated = record.Simulated();

    nlohmann::ordered_json checks = nlohmann::ordered_json::array();
    for (const Check &check : record.checks)
        checks.push_back({{"class", check.classname},
                          {"name", check.name},
                          {"result", Result(check)},
                          {"expected_error", check.expectedError},
                          {"type", TextOrNull(check.type)},
                          {"message", TextOrNull(check.message)},
                          {"line", check.line},
                          {"at_seconds", check.at},
                          {"seconds", check.seconds}});

    nlohmann::ordered_json measurements = nlohmann::ordered_json::array();
    for (const Measurement &measurement : record.measurements) {
        nlohmann::ordered_json entry = {{"name", measurement.name},
                                        {"quantity", measurement.quantity},
                                        {"class", measurement.classname},
                                        {"command", measurement.command},
                                        {"unit", measurement.unit}};
        if (measurement.isArray)
            entry["values"] = measurement.values;
        else
            entry["value"] = measurement.values.front();
        entry["line"] = measurement.line;
        const std::optional<Limit> &limit = measurement.limit;
        entry["low"] = limit ? nlohmann::ordered_json(limit->low) : nullptr;
        entry["high"] = limit ? nlohmann::ordered_json(limit->high) : nullptr;
        entry["marginal_low"] = limit ? nlohmann::ordered_json(limit->marginalLow) : nullptr;
        entry["marginal_high"] = limit ? nlohmann::ordered_json(limit->marginalHigh) : nullptr;
        entry["result"] = !limit                      ? nlohmann::ordered_json(nullptr)
                          : !measurement.withinLimits ? nlohmann::ordered_json("FAIL")
                          : measurement.marginal      ? nlohmann::ordered_json("MARGINAL")
                                                      : nlohmann::ordered_json("PASS");
        measurements.push_back(entry);
    }

    return {{"source", record.source},
            {"unit", {{"id", TextOrNull(context.unit)},
                      {"name", UnitName(record, context)},
                      {"simulated", simulated ? nlohmann::ordered_json(*simulated) : nlohmann::ordered_json(nullptr)},
                      {"identity", identity}}},
            {"context", {{"station", TextOrNull(context.station)},
                         {"operator", TextOrNull(context.operatorName)},
                         {"hostname", context.hostname},
                         {"start_time", UtcTime(record.startMs)},
                         {"seconds", record.seconds},
                         {"timed", record.timed},
                         {"scripted", record.scripted}}},
            {"verdict", record.Verdict()},
            {"error", TextOrNull(record.error)},
            {"totals", {{"checks", totals.checks},
                        {"passed", totals.passed},
                        {"marginal", totals.marginal},
                        {"failed", totals.failed},
                        {"expected_errors", totals.expectedErrors},
                        {"commands", totals.commands},
                        {"measurements", record.measurements.size()}}},
            {"checks", checks},
            {"measurements", measurements}};
}

JsonWriter::JsonWriter(std::ostream &out, const RunContext &context) : out_(out), context_(context)
{
    out_ << "{\n  \"schema_version\": " << kJsonSchemaVersion << ",\n  \"report_version\": "
         << Dump(context.reportVersion, -1) << ",\n  \"units\": [";
}

void JsonWriter::Add(const UnitRecord &record)
{
    std::istringstream unit(Dump(UnitJson(record, context_), 2));
    out_ << (units_++ == 0 ? "\n" : ",\n");
    bool first = true;
    for (std::string line; std::getline(unit, line); first = false)
        out_ << (first ? "" : "\n") << "    " << line;
}

void JsonWriter::End(const BatchVerdict &verdict)
{
    out_ << (units_ == 0 ? "],\n" : "\n  ],\n") << "  \"verdict\": \"" << verdict.Word() << "\",\n  \"unit_count\": "
         << verdict.Units() << "\n}\n";
}

// ---- Whole documents ----

std::string JunitXml(const std::vector<UnitRecord> &records, const RunContext &context)
{
    std::ostringstream out;
    JunitWriter writer(out, context);
    for (const UnitRecord &record : records)
        writer.Add(record);
    writer.End();
    return out.str();
}

// A writer that ends with the batch's verdict, given every record at once.
template <class Writer, class... Arguments>
std::string WholeDocument(const std::vector<UnitRecord> &records, Arguments &&...arguments)
{
    std::ostringstream out;
    Writer writer(out, std::forward<Arguments>(arguments)...);
    BatchVerdict verdict;
    for (const UnitRecord &record : records) {
        writer.Add(record);
        verdict.Add(record);
    }
    writer.End(verdict);
    return out.str();
}

std::string JsonDocument(const std::vector<UnitRecord> &records, const RunContext &context)
{
    return WholeDocument<JsonWriter>(records, context);
}

std::string HtmlPage(const std::vector<UnitRecord> &records, const RunContext &context,
                     const std::string &plotLibrary, const std::string &plotStyle)
{
    return WholeDocument<HtmlWriter>(records, context, plotLibrary, plotStyle);
}

}  // namespace q7report
