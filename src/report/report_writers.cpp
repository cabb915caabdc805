#include "report_writers.h"

#include <climits>
#include <cstdio>

#include <tinyxml2.h>

namespace q7report {
namespace {

std::string Seconds(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

const char *Result(bool passed) { return passed ? "PASS" : "FAIL"; }

// A JSON text, or null where the transcript or the command line gave none.
nlohmann::ordered_json TextOrNull(const std::string &text)
{
    return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

// The testsuite's properties: who the unit is, where and by what it was judged.
std::vector<std::pair<std::string, std::string>> Properties(const UnitRecord &record, const RunContext &context)
{
    std::vector<std::pair<std::string, std::string>> properties = {
        {"unit", UnitName(record, context)}, {"station", context.station}, {"operator", context.operatorName}};
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        properties.emplace_back(kIdentityFields[i].key, record.identity[i]);
    properties.emplace_back("simulated", record.Simulated() ? "yes" : "no");
    properties.emplace_back("source", record.source);
    properties.emplace_back("report_version", context.reportVersion);
    return properties;
}

}  // namespace

std::string SummaryLine(const UnitRecord &record, const RunContext &context)
{
    Totals totals = record.Count();
    return std::string("q7cal-report: ") + Result(record.Passed()) + " unit " + UnitName(record, context) +
           (record.Simulated() ? " (simulated device)" : "") + " from " + record.source + ": " +
           std::to_string(totals.checks) + " checks: " + std::to_string(totals.checksPassed) + " PASS, " +
           std::to_string(totals.checks - totals.checksPassed) + " FAIL; " + std::to_string(totals.expectedErrors) +
           " expected errors; " + std::to_string(totals.commands) + " commands: " +
           std::to_string(totals.commandsPassed) + " SUCCESSFUL, " +
           std::to_string(totals.commands - totals.commandsPassed) + " failed; " +
           std::to_string(record.measurements.size()) + " measurements\n";
}

std::string FailureLines(const UnitRecord &record)
{
    std::string lines;
    for (const Check &check : record.checks)
        if (!check.passed)
            lines += "q7cal-report: FAIL " + record.source + ": " + check.classname + ": " + check.name + ": " +
                     check.message + " (line " + std::to_string(check.line) + ")\n";
    return lines;
}

std::string JunitXml(const std::vector<UnitRecord> &records, const RunContext &context)
{
    tinyxml2::XMLDocument document;
    document.InsertEndChild(document.NewDeclaration());
    tinyxml2::XMLElement *all = document.NewElement("testsuites");
    document.InsertEndChild(all);
    for (size_t id = 0; id < records.size(); id++) {
        const UnitRecord &record = records[id];
        size_t failures = 0;
        for (const Check &check : record.checks)
            failures += !check.passed;
        tinyxml2::XMLElement *suite = all->InsertNewChildElement("testsuite");
        // Each unit a suite of its own: its name says which unit and which transcript.
        suite->SetAttribute("name", (UnitName(record, context) + " (" + record.source + ")").c_str());
        suite->SetAttribute("package", "q7cal");
        suite->SetAttribute("id", static_cast<int64_t>(id));
        suite->SetAttribute("timestamp", IsoTime(record.start).c_str());
        suite->SetAttribute("hostname", context.hostname.c_str());
        suite->SetAttribute("tests", static_cast<int64_t>(record.checks.size()));
        suite->SetAttribute("failures", static_cast<int64_t>(failures));
        suite->SetAttribute("errors", 0);
        suite->SetAttribute("time", Seconds(record.seconds).c_str());

        tinyxml2::XMLElement *properties = suite->InsertNewChildElement("properties");
        for (const auto &[name, value] : Properties(record, context)) {
            tinyxml2::XMLElement *property = properties->InsertNewChildElement("property");
            property->SetAttribute("name", name.c_str());
            property->SetAttribute("value", value.c_str());
        }
        for (const Check &check : record.checks) {
            tinyxml2::XMLElement *testcase = suite->InsertNewChildElement("testcase");
            testcase->SetAttribute("name", check.name.c_str());
            testcase->SetAttribute("classname", check.classname.c_str());
            testcase->SetAttribute("time", Seconds(check.seconds).c_str());
            if (!check.passed) {
                tinyxml2::XMLElement *failure = testcase->InsertNewChildElement("failure");
                failure->SetAttribute("message", check.message.c_str());
                failure->SetAttribute("type", check.type.c_str());
                failure->SetText(check.evidence.c_str());
            }
        }
        suite->InsertNewChildElement("system-out")->SetText(record.transcript.c_str());
        suite->InsertNewChildElement("system-err")->SetText(FailureLines(record).c_str());
    }
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return printer.CStr();
}

nlohmann::ordered_json UnitJson(const UnitRecord &record, const RunContext &context)
{
    nlohmann::ordered_json identity;
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        identity[kIdentityFields[i].key] = TextOrNull(record.identity[i]);
    Totals totals = record.Count();

    nlohmann::ordered_json checks = nlohmann::ordered_json::array();
    for (const Check &check : record.checks)
        checks.push_back({{"class", check.classname},
                          {"name", check.name},
                          {"result", Result(check.passed)},
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
        entry["low"] = measurement.limit ? nlohmann::ordered_json(measurement.limit->low) : nullptr;
        entry["high"] = measurement.limit ? nlohmann::ordered_json(measurement.limit->high) : nullptr;
        entry["result"] = measurement.limit ? nlohmann::ordered_json(Result(measurement.withinLimits)) : nullptr;
        measurements.push_back(entry);
    }

    return {{"source", record.source},
            {"unit", {{"id", TextOrNull(context.unit)},
                      {"name", UnitName(record, context)},
                      {"simulated", record.Simulated()},
                      {"identity", identity}}},
            {"context", {{"station", TextOrNull(context.station)},
                         {"operator", TextOrNull(context.operatorName)},
                         {"hostname", context.hostname},
                         {"start_time", IsoTime(record.start) + "Z"},
                         {"seconds", record.seconds},
                         {"timed", record.timed},
                         {"scripted", record.scripted}}},
            {"verdict", Result(record.Passed())},
            {"totals", {{"checks", totals.checks},
                        {"checks_passed", totals.checksPassed},
                        {"expected_errors", totals.expectedErrors},
                        {"commands", totals.commands},
                        {"commands_passed", totals.commandsPassed},
                        {"measurements", record.measurements.size()}}},
            {"checks", checks},
            {"measurements", measurements}};
}

std::string JsonDocument(const std::vector<UnitRecord> &records, const RunContext &context)
{
    bool passed = !records.empty();
    nlohmann::ordered_json units = nlohmann::ordered_json::array();
    for (const UnitRecord &record : records) {
        passed = passed && record.Passed();
        units.push_back(UnitJson(record, context));
    }
    nlohmann::ordered_json document = {{"schema_version", kJsonSchemaVersion},
                                       {"report_version", context.reportVersion},
                                       {"verdict", Result(passed)},
                                       {"units", units}};
    return document.dump(2) + "\n";
}

}  // namespace q7report
