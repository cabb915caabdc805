// q7cal-report's reader and writers. Whole transcripts and their summaries are
// golden cases under golden/report/; here: how a command ends, a run cut off,
// and the JUnit and JSON files parsed back.
//
// The failing-run transcripts were recorded once from the program (instant
// sleep) with the simulated device's faults set before the session:
//   stuck_led.in    StickGpioPin(11, 0): the LED write 1 test fails
//   faulty_unit.in  FailNext("Q7_SetTxOutputPower", 1), FailNext("Q7_CalibrateFESteps", 1),
//                   FailCall("Q7_SetGPIOConfiguration", 2): an error glued to its
//                   announcement, an error in a section without verdicts, and the
//                   GPIO writes that should have been refused going through
//   incomplete_run.in  answers "9 2 <Enter>": input ends at the second pause
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "report_writers.h"
#include "transcript.h"

namespace {

using q7report::JudgeTranscript;
using q7report::Transcript;

const char kSessionStart[] =
    "\nTrying to open handle to Device...Success!!\n\n\n"
    "******** Cal API Main Menu ********\n\nENTER OPTION : \n\n"
    "******** DSD Read/Write Commands ********\n\nENTER OPTION : \n";

Transcript Judge(const std::string &text)
{
    std::istringstream in(text);
    return JudgeTranscript(in, q7report::kStandardInput);
}

Transcript JudgeGolden(const std::string &name)
{
    std::ifstream in(std::string(Q7_GOLDEN_DIR) + "/report/" + name + ".in");
    EXPECT_TRUE(in) << name;
    return JudgeTranscript(in, q7report::kStandardInput);
}

TEST(ReportTest, ACommandPassesOnlyWithItsGoodEndingAndNothingAmiss)
{
    const char kNextMenu[] = "\n\n******** DSD Read/Write Commands ********\n";
    struct Case {
        std::string output;
        bool passed;
        const char *message;
    } cases[] = {
        {"Write DSD Block:\n\n0 verify errors.\n\nTestWriteDSDBlock was SUCCESSFUL.\n" + std::string(kNextMenu), true, ""},
        {"ConnectDevice:\n     Device connected.\n" + std::string(kNextMenu), true, ""},
        {"Write DSD Block:\n\n2 verify errors.\n\nTestWriteDSDBlock was SUCCESSFUL.\n" + std::string(kNextMenu), false,
         "2 verify errors."},
        {"Write DSD Bytes:\n\nWARNING: Original data not restored, because x.\n" + std::string(kNextMenu), false,
         "WARNING: Original data not restored, because x."},
        {"Read DSD Bytes:\n\nREAD ERROR: Device fault\n" + std::string(kNextMenu), false, "READ ERROR: Device fault"},
        {"Read DSD Bytes:\n    Address ? \nEnd of input: command abandoned.\n" + std::string(kNextMenu), false,
         "no SUCCESSFUL line: it ends with \"End of input: command abandoned.\""},
        {"Read DSD Bytes:\n    Address ? ", false, "the transcript ends inside the command"},
    };
    for (const Case &one : cases) {
        std::string text = kSessionStart + one.output;
        Transcript judged = Judge(text);
        ASSERT_EQ(judged.suites.size(), 1u) << one.output;
        ASSERT_EQ(judged.suites[0].cases.size(), 1u) << one.output;
        const q7report::TestCase &command = judged.suites[0].cases[0];
        EXPECT_EQ(command.passed, one.passed) << one.output;
        EXPECT_EQ(command.message, one.message) << one.output;
        EXPECT_EQ(command.group, "DSD Read/Write Commands");
    }
}

TEST(ReportTest, ARunCutOffInsideFailsAsIncomplete)
{
    Transcript judged = Judge(std::string(kSessionStart) +
                              "Push[ 1] - set device mode: mode = 4 modulation = 1 CW Offset=1000 LoopbackTX=0 \n"
                              "\n------------- Testing CONFIGURATION COMMAND GROUP\n"
                              "Read:  Freq = 2500000 - BW = 10000 PASS\n");
    ASSERT_EQ(judged.suites.size(), 1u);
    const q7report::Suite &run = judged.suites[0];
    ASSERT_EQ(run.cases.size(), 2u);
    EXPECT_TRUE(run.cases[0].passed);
    EXPECT_EQ(run.cases[0].group, "Configuration");
    EXPECT_EQ(run.cases[1].name, "run complete");
    EXPECT_FALSE(run.cases[1].passed);
    EXPECT_EQ(run.cases[1].message, "the transcript ends inside the run");
}

TEST(ReportTest, TheJunitFileNamesEveryCheckAndTheFailingOne)
{
    struct Case {
        const char *golden;
        int tests;
        int failures;
        const char *failingClass;
        const char *failingName;
        const char *message;
    } cases[] = {
        {"healthy_run", 22, 0, "", "", ""},
        {"stuck_led", 22, 1, "automated.Other commands", "ReadGPIOState, SetGPIOConfiguration, and SetGPIOPinState #2",
         "GPIO LED write 1 test: FAIL"},
        {"interactive_session", 13, 5, "commands.Configuration Commands", "ConnectDevice #1",
         "ERROR: Device already connected"},
    };
    for (const Case &one : cases) {
        tinyxml2::XMLDocument document;
        ASSERT_EQ(document.Parse(q7report::JunitXml({JudgeGolden(one.golden)}).c_str()), tinyxml2::XML_SUCCESS);
        const tinyxml2::XMLElement *all = document.FirstChildElement("testsuites");
        ASSERT_NE(all, nullptr);
        EXPECT_EQ(all->IntAttribute("tests"), one.tests) << one.golden;
        EXPECT_EQ(all->IntAttribute("failures"), one.failures) << one.golden;
        int cases = 0;
        const tinyxml2::XMLElement *firstFailing = nullptr;
        for (auto *suite = all->FirstChildElement("testsuite"); suite; suite = suite->NextSiblingElement("testsuite"))
            for (auto *test = suite->FirstChildElement("testcase"); test; test = test->NextSiblingElement("testcase")) {
                cases++;
                if (firstFailing == nullptr && test->FirstChildElement("failure") != nullptr)
                    firstFailing = test;
            }
        EXPECT_EQ(cases, one.tests) << one.golden;
        if (one.failures == 0) {
            EXPECT_EQ(firstFailing, nullptr) << one.golden;
            continue;
        }
        ASSERT_NE(firstFailing, nullptr) << one.golden;
        EXPECT_STREQ(firstFailing->Attribute("classname"), one.failingClass);
        EXPECT_STREQ(firstFailing->Attribute("name"), one.failingName);
        EXPECT_STREQ(firstFailing->FirstChildElement("failure")->Attribute("message"), one.message);
    }
}

TEST(ReportTest, MarkupAndOddBytesInAnErrorTextReachBothFilesIntact)
{
    Transcript judged = Judge(std::string(kSessionStart) +
                              "Read DSD Bytes:\n\nERROR: <a> & \"b\" \x01\xff\n\n******** Tx Commands ********\n");
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(q7report::JunitXml({judged}).c_str()), tinyxml2::XML_SUCCESS);
    const tinyxml2::XMLElement *failure =
        document.FirstChildElement("testsuites")->FirstChildElement("testsuite")->FirstChildElement("testcase")
            ->FirstChildElement("failure");
    ASSERT_NE(failure, nullptr);
    EXPECT_STREQ(failure->Attribute("message"), "ERROR: <a> & \"b\" ??");

    nlohmann::json record = nlohmann::json::parse(q7report::JsonRecord({judged}));
    EXPECT_EQ(record["passed"], false);
    EXPECT_EQ(record["commands"]["failed"], 1);
    EXPECT_EQ(record["suites"][0]["cases"][0]["message"], "ERROR: <a> & \"b\" ??");
}

}  // namespace
