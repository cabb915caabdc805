#include "report_writers.h"

#include <tinyxml2.h>

#include <nlohmann/json.hpp>

namespace q7report {
namespace {

// Suites are named by their run or "commands", and by the file they come
// from when it has a name.
std::string SuiteName(const Transcript &transcript, const Suite &suite)
{
    return transcript.source == kStandardInput ? suite.name : transcript.source + ": " + suite.name;
}

// "automated.Tx", "commands.Tx Commands": CI servers show the part before
// the last dot as a package.
std::string ClassName(const Suite &suite, const TestCase &one)
{
    std::string kind = suite.automatedRun ? "automated" : "commands";
    return one.group.empty() ? kind : kind + "." + one.group;
}

}  // namespace

std::string SummaryLine(const Totals &totals)
{
    return "q7cal-report: " + std::to_string(totals.checks) + " checks: " + std::to_string(totals.checksPassed) +
           " PASS, " + std::to_string(totals.checks - totals.checksPassed) + " FAIL; " +
           std::to_string(totals.expectedErrors) + " expected errors; " + std::to_string(totals.commands) +
           " commands: " + std::to_string(totals.commandsPassed) + " SUCCESSFUL, " +
           std::to_string(totals.commands - totals.commandsPassed) + " failed\n";
}

std::string FailureLines(const std::vector<Transcript> &transcripts)
{
    std::string lines;
    for (const Transcript &transcript : transcripts)
        for (const Suite &suite : transcript.suites)
            for (const TestCase &one : suite.cases)
                if (!one.passed)
                    lines += "q7cal-report: FAIL " + SuiteName(transcript, suite) + ": " +
                             (one.group.empty() ? "" : one.group + ": ") + one.name + ": " + one.message + " (line " +
                             std::to_string(one.line) + ")\n";
    return lines;
}

std::string JunitXml(const std::vector<Transcript> &transcripts)
{
    tinyxml2::XMLDocument document;
    document.InsertEndChild(document.NewDeclaration());
    tinyxml2::XMLElement *all = document.NewElement("testsuites");
    document.InsertEndChild(all);
    all->SetAttribute("name", "q7cal-report");
    size_t tests = 0, failures = 0;
    for (const Transcript &transcript : transcripts)
        for (const Suite &suite : transcript.suites) {
            tinyxml2::XMLElement *xmlSuite = all->InsertNewChildElement("testsuite");
            xmlSuite->SetAttribute("name", SuiteName(transcript, suite).c_str());
            size_t suiteFailures = 0;
            for (const TestCase &one : suite.cases) {
                tinyxml2::XMLElement *xmlCase = xmlSuite->InsertNewChildElement("testcase");
                xmlCase->SetAttribute("classname", ClassName(suite, one).c_str());
                xmlCase->SetAttribute("name", one.name.c_str());
                if (!one.passed) {
                    tinyxml2::XMLElement *failure = xmlCase->InsertNewChildElement("failure");
                    failure->SetAttribute("message", one.message.c_str());
                    failure->SetAttribute("type", one.expectedError ? "missing expected error" : "FAIL");
                    failure->SetText(one.output.c_str());
                    suiteFailures++;
                }
            }
            xmlSuite->SetAttribute("tests", static_cast<uint64_t>(suite.cases.size()));
            xmlSuite->SetAttribute("failures", static_cast<uint64_t>(suiteFailures));
            xmlSuite->SetAttribute("errors", 0);
            tests += suite.cases.size();
            failures += suiteFailures;
        }
    all->SetAttribute("tests", static_cast<uint64_t>(tests));
    all->SetAttribute("failures", static_cast<uint64_t>(failures));
    all->SetAttribute("errors", 0);
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return printer.CStr();
}

std::string JsonRecord(const std::vector<Transcript> &transcripts)
{
    Totals totals = CountCases(transcripts);
    nlohmann::ordered_json record;
    record["passed"] = totals.AllPassed();
    record["checks"] = {{"total", totals.checks},
                        {"pass", totals.checksPassed},
                        {"fail", totals.checks - totals.checksPassed}};
    record["expected_errors"] = totals.expectedErrors;
    record["commands"] = {{"total", totals.commands},
                          {"successful", totals.commandsPassed},
                          {"failed", totals.commands - totals.commandsPassed}};
    record["suites"] = nlohmann::ordered_json::array();
    for (const Transcript &transcript : transcripts)
        for (const Suite &suite : transcript.suites) {
            nlohmann::ordered_json cases = nlohmann::ordered_json::array();
            for (const TestCase &one : suite.cases) {
                nlohmann::ordered_json entry = {{"class", ClassName(suite, one)},
                                                {"name", one.name},
                                                {"passed", one.passed},
                                                {"line", one.line}};
                if (one.expectedError)
                    entry["expected_error"] = true;
                if (!one.passed)
                    entry["message"] = one.message;
                cases.push_back(entry);
            }
            record["suites"].push_back({{"source", transcript.source},
                                        {"name", suite.name},
                                        {"automated_run", suite.automatedRun},
                                        {"cases", cases}});
        }
    return record.dump(2) + "\n";
}

}  // namespace q7report
