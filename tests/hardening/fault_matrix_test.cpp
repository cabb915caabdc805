// Every device call of every command in MenuEntry failing in turn. The calls
// are found by running the command with plain answers and logging them; then,
// for each call of the log, the same run with exactly that call failing. The
// command must say so with the library's text on an error line and return -1.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "SimControl.h"
#include "command_script.h"
#include "console_capture.h"
#include "scripted_session.h"

namespace {

const char *const kFillers[] = {"0", "1"};

// What a command returns after a failing call, where it is not -1.
struct ResultException {
    const char *label;
    const char *operation;  // "*": every call
    int result;
    const char *why;
};
const ResultException kResultExceptions[] = {
    {"Automated test", "*", 0, "reports a failing operation and goes on; the run always returns 0"},
    {"NVM Mode test", "Q7_AreDSDChecksumsValid", 0, "the checksum pair reports its own failure; the test goes on"},
    {"NVM Mode test", "Q7_GetDSDChecksums", 0, "the checksum pair reports its own failure; the test goes on"},
};

// Failing calls that are not reported with their own text.
enum class Report { Refusal, None };
struct ReportException {
    const char *label;  // "*": every command
    const char *operation;
    Report report;
    const char *why;
};
const ReportException kReportExceptions[] = {
    {"*", "Q7_RequestDSDWriteKey", Report::Refusal,
     "a refused key request yields key 0; the write that uses it reports the refusal"},
    {"WriteDSDBlock", "Q7_GetOptionByID", Report::None, "the NVM mode is shown whatever the status"},
    {"WriteDSDBytes", "Q7_GetOptionByID", Report::None, "the NVM mode is shown whatever the status"},
    {"WriteFlash2xBytesWithHeader", "Q7_GetOptionByID", Report::None, "the NVM mode is shown whatever the status"},
    {"Automated test", "Q7_SetDeviceMode", Report::None, "the stack and the direct mode set go on whatever the status"},
    {"Automated test", "Q7_GetDeviceMode", Report::None, "the mode read is printed whatever the status"},
    {"Automated test", "Q7_ForceReSync", Report::None, "the re-sync after a band setting is not examined"},
    {"Automated test", "Q7_SetTRSwitch", Report::None, "the loopback group sets the TR switches unexamined"},
    {"Automated test", "Q7_GetDSDRegionSizeByID", Report::None, "a region is read whatever its size query said"},
};

int ExpectedResult(const std::string &label, const std::string &operation)
{
    for (const ResultException &exception : kResultExceptions)
        if (label == exception.label && (std::string(exception.operation) == "*" || operation == exception.operation))
            return exception.result;
    return -1;
}

const ReportException *FindReportException(const std::string &label, const std::string &operation)
{
    for (const ReportException &exception : kReportExceptions)
        if ((std::string(exception.label) == "*" || label == exception.label) && operation == exception.operation)
            return &exception;
    return nullptr;
}

struct HandlerSession {
    Session session;
    int result;
    std::vector<std::string> calls;
    bool dsdChanged;  // a DSD store differs from before the command
};

// The command's handler called directly, its prompts answered with `filler`,
// the `skip`+1-th call of `operation` failing with `text` (none: no fault).
HandlerSession RunCommand(const CommandRow &row, const std::string &filler, const std::string &operation = "",
                          unsigned skip = 0, const std::string &text = "")
{
    CalInterfaceHandle hCal = FreshConnectedDevice();
    if (!operation.empty())
        q7sim::control::FailCall(operation.c_str(), skip + 1, text.c_str());
    const std::vector<uint8_t> storesBefore = DsdStoresOf(*q7sim::control::OpenDevice());
    CommandScript script(nullptr, filler);
    int result = 0;
    Session session = RunSession(row.label + ": " + operation + " failing after " + std::to_string(skip) + " calls",
                                 std::ref(script), [&] { result = MenuEntry[row.index].pfnHandler(hCal); });
    std::vector<std::string> calls = q7sim::control::Calls();
    bool dsdChanged = DsdStoresOf(*q7sim::control::OpenDevice()) != storesBefore;
    q7sim::control::Reset();
    return {std::move(session), result, std::move(calls), dsdChanged};
}

class FaultMatrix : public ::testing::TestWithParam<CommandRow> {};

TEST_P(FaultMatrix, EveryDeviceCallOfTheCommandFailingInTurnIsReported)
{
    const CommandRow &row = GetParam();
    // A call site: the operation and how many calls of it come before.
    std::set<std::pair<std::string, unsigned>> sites;
    std::set<std::string> operations;

    for (const std::string filler : kFillers) {
        HandlerSession plain = RunCommand(row, filler);
        std::map<std::string, unsigned> seen;
        for (const std::string &operation : plain.calls) {
            unsigned skip = seen[operation]++;
            if (!sites.insert({operation, skip}).second)
                continue;
            operations.insert(operation);
            std::string text = "Injected fault in " + operation + " call " + std::to_string(skip + 1);
            std::string what = row.label + ", " + text + " (answers " + filler + ")";
            HandlerSession failed = RunCommand(row, filler, operation, skip, text);
            EXPECT_FALSE(failed.session.runaway) << what;
            // A command that changed the DSD before its failing call says so
            // with the count it wrote, whatever the failing call was.
            if (failed.dsdChanged) {
                EXPECT_TRUE(failed.session.output.find("actually written") != std::string::npos ||
                            failed.session.output.find("\nWrote ") != std::string::npos)
                    << what << ": the DSD changed without a written count in\n" << failed.session.output;
            }

            const ReportException *exception = FindReportException(row.label, operation);
            if (exception != nullptr && exception->report == Report::None)
                continue;
            // Any of the program's error lines: "ERROR: ", "READ ERROR: ", "WRITE ERROR: ".
            std::string errorLine = "ERROR: " + text + "\n";
            if (exception == nullptr) {
                EXPECT_NE(failed.session.output.find(errorLine), std::string::npos)
                    << what << ": no error line with the library's text in\n" << failed.session.output;
            } else {
                EXPECT_TRUE(failed.session.output.find("ERROR") != std::string::npos ||
                            failed.session.output.find("FAILED") != std::string::npos)
                    << what << ": the refusal is not reported (" << exception->why << ")\n" << failed.session.output;
            }
            EXPECT_EQ(failed.result, ExpectedResult(row.label, operation)) << what;
        }
    }
    std::printf("[fault matrix] %s: %zu operations, %zu call sites\n", row.label.c_str(), operations.size(),
                sites.size());
    RecordProperty("call_sites", static_cast<int>(sites.size()));
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, FaultMatrix, ::testing::ValuesIn(CommandRows()),
                         [](const ::testing::TestParamInfo<CommandRow> &info) { return TestNameOf(info.param); });

}  // namespace
