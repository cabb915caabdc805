// q7cal-report's reader, value lines, limits and writers. Whole transcripts
// and their verdicts are golden cases under golden/report/ (records.txt says
// how each was recorded); the files a line keeps (JUnit by the strict schema
// and junitparser, JSON, the HTML page in Chromium) are checked by
// report_files_test.sh. Here: what a transcript alone cannot pin down.
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "history_report.h"
#include "line_classifier.h"
#include "measurement_limits.h"
#include "report_files.h"
#include "report_writers.h"
#include "run_plan.h"
#include "transcript.h"

namespace {

using q7report::Check;
using q7report::ResultLine;
using q7report::UnitRecord;

const char kSessionStart[] =
    "\nTrying to open handle to Device...Success!!\n\n\n"
    "******** Cal API Main Menu ********\n\nENTER OPTION : \n\n"
    "******** DSD Read/Write Commands ********\n\nENTER OPTION : \n";

std::vector<q7report::TimedLine> Lines(const std::string &text)
{
    std::vector<q7report::TimedLine> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back({line, 0});
    return lines;
}

UnitRecord Judge(const std::string &text, const q7report::Limits &limits = q7report::Limits::Default())
{
    return q7report::JudgeTranscript(Lines(text), limits);
}

std::string Golden(const std::string &name)
{
    std::ifstream in(std::string(Q7_GOLDEN_DIR) + "/report/" + name + ".in");
    EXPECT_TRUE(in) << name;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

const Check *Find(const UnitRecord &record, const std::string &name)
{
    for (const Check &check : record.checks)
        if (check.name == name)
            return &check;
    return nullptr;
}

// The healthy run's lines, and the run judged with line `at` replaced by `replacement`.
std::vector<std::string> HealthyLines()
{
    std::vector<std::string> lines;
    for (const q7report::TimedLine &line : Lines(Golden("healthy_run")))
        lines.push_back(line.text);
    return lines;
}

UnitRecord JudgeEdited(const std::vector<std::string> &lines, size_t at, const std::vector<std::string> &replacement)
{
    std::string text;
    for (size_t i = 0; i < lines.size(); i++)
        for (const std::string &line : i == at ? replacement : std::vector<std::string>{lines[i]})
            text += line + "\n";
    return Judge(text);
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
        {"Write DSD Block:\n\nx verify errors.\n\nTestWriteDSDBlock was SUCCESSFUL.\n" + std::string(kNextMenu), false,
         "x verify errors."},
        {"Write DSD Bytes:\n\nWARNING: Original data not restored, because x.\n" + std::string(kNextMenu), false,
         "WARNING: Original data not restored, because x."},
        {"Read DSD Bytes:\n\nREAD ERROR: Device fault\n" + std::string(kNextMenu), false, "READ ERROR: Device fault"},
        {"Read DSD Bytes:\n    Address ? \nEnd of input: command abandoned.\n" + std::string(kNextMenu), false,
         "no SUCCESSFUL line: it ends with \"End of input: command abandoned.\""},
        {"Read DSD Bytes:\n    Address ? ", false, "the transcript ends inside the command"},
    };
    for (const Case &one : cases) {
        UnitRecord judged = Judge(kSessionStart + one.output);
        ASSERT_EQ(judged.checks.size(), 2u) << one.output;  // the command, and the answers in step
        const Check &command = judged.checks[0];
        EXPECT_TRUE(command.isCommand);
        EXPECT_EQ(command.passed, one.passed) << one.output;
        EXPECT_EQ(command.message, one.message) << one.output;
        EXPECT_EQ(command.classname, "commands.DSD Read/Write Commands");
        EXPECT_EQ(judged.checks[1].name, "answers in step");
    }
    // A terminal's echo shows typed answers, a negative one too: no script to keep in step.
    UnitRecord typed = Judge(kSessionStart + std::string("ConnectDevice:\n     Device connected.\n") + kNextMenu +
                             "\nENTER OPTION : -1\n");
    EXPECT_EQ(Find(typed, "answers in step"), nullptr);
    // A command without a heading is named by its first line, up to 60 characters.
    std::string first = "Value = " + std::string(52, '7');
    EXPECT_EQ(Judge(kSessionStart + first + "89\n" + kNextMenu).checks[0].name, first);
}

// A store shown NOT VALID fails in any session, each state a check of its
// own; the NVM mode test's states show what it does to the DSD buffer.
TEST(ReportTest, AStoreShownNotValidFailsOutsideTheRunButInTheNvmModeTest)
{
    const std::string states = "    DSD checksum is  VALID\n         PHY checksum is NOT VALID\n";
    const std::string nextMenu = "\n\n******** Test Commands ********\n";
    UnitRecord byte = Judge(kSessionStart + std::string("AreDSDChecksumsValid:\n") + states +
                            "\nAreDSDChecksumsValid was SUCCESSFUL.\n" + nextMenu);
    ASSERT_NE(Find(byte, "AreDSDChecksumsValid: PHY checksum"), nullptr);
    EXPECT_EQ(Find(byte, "AreDSDChecksumsValid: PHY checksum")->message, "PHY checksum is NOT VALID");
    EXPECT_TRUE(Find(byte, "AreDSDChecksumsValid: DSD checksum")->passed);
    EXPECT_FALSE(byte.Passed());
    EXPECT_FALSE(byte.Simulated().has_value());  // no version report: the device is not identified
    UnitRecord nvm = Judge(kSessionStart + std::string("Enter interface type (0=not MII; 1=MII): Running test\n") +
                           states + "\nGetDSDChecksums was SUCCESSFUL.\n" + nextMenu);
    EXPECT_TRUE(nvm.Passed());
    EXPECT_EQ(nvm.checks.size(), 2u);  // the test, and the answers in step
}

TEST(ReportTest, TheRunEndsJudgedByItsFinalPopAndTheLineAfterIt)
{
    std::string healthy = Golden("healthy_run");
    const std::string pop = "Pop[ 0] - set device mode: mode = 0 modulation = 0 CW Offset=0 LoopbackTX=0 \n";
    size_t at = healthy.find(pop);
    ASSERT_NE(at, std::string::npos);
    UnitRecord judged = Judge(healthy);
    ASSERT_NE(Find(judged, "device mode restored"), nullptr);
    EXPECT_TRUE(Find(judged, "device mode restored")->passed);
    EXPECT_TRUE(judged.Passed());

    // q7cal read the mode back and found the device elsewhere.
    const std::string warning = "WARNING: The device mode is not restored: mode = 4 modulation = 1 CW Offset=1000 "
                                "LoopbackTX=0\n";
    UnitRecord warned = Judge(std::string(healthy).insert(at + pop.size(), "\n" + warning));
    const Check *restored = Find(warned, "device mode restored");
    ASSERT_NE(restored, nullptr);
    EXPECT_FALSE(restored->passed);
    EXPECT_EQ(restored->message + "\n", warning);
    EXPECT_FALSE(warned.Passed());
    EXPECT_EQ(warned.checks.size(), judged.checks.size());  // the transcript's next lines are read as before

    // A pop that did not set the base record fails by itself, whichever of its four fields is not 0.
    for (const char *modes : {"mode = 4 modulation = 0 CW Offset=0 LoopbackTX=0", "mode = 0 modulation = 1 CW Offset=0 LoopbackTX=0",
                              "mode = 0 modulation = 0 CW Offset=1000 LoopbackTX=0", "mode = 0 modulation = 0 CW Offset=0 LoopbackTX=1"}) {
        std::string wrongPop = healthy;
        wrongPop.replace(at, pop.size(), "Pop[ 0] - set device mode: " + std::string(modes) + " \n");
        EXPECT_FALSE(Find(Judge(wrongPop), "device mode restored")->passed) << modes;
    }

    // Cut off inside: incomplete, every check still to come not checked, the
    // mode among them; the same checks as a whole run.
    UnitRecord cut = Judge(healthy.substr(0, healthy.find("------------- Testing TX COMMAND GROUP")));
    const Check *complete = Find(cut, "run complete");
    ASSERT_NE(complete, nullptr);
    EXPECT_FALSE(complete->passed);
    EXPECT_EQ(complete->message, "the transcript ends inside the run");
    EXPECT_EQ(Find(cut, "device mode restored")->message, "not checked: the run's final Pop[ 0] is not in the transcript");
    EXPECT_EQ(Find(cut, "GetTemperature: Temperature")->message, "not measured: Temperature (Other commands group, before line 235)");
    EXPECT_EQ(cut.checks.size(), judged.checks.size());
}

// Each check takes the time from the check before it to the line that
// settled it: a spectrum cut short by the run's first push is settled there,
// and the run's own checks are timed from it.
TEST(ReportTest, AListCutShortByARunIsSettledWhereTheRunStarts)
{
    std::string rows = "   0:";
    for (int bin = 0; bin < 16; bin++)
        rows += "   12.0";
    std::vector<q7report::TimedLine> lines =
        Lines("\nTrying to open handle to Device...Success!!\n\n\n******** Rx Commands ********\n\n"
              "ENTER OPTION : GetRxSpectrum\n\nSpectrum length = 16\n\n" + rows + "\n"
              "ENTER OPTION : Push[ 1] - set device mode: mode = 4 modulation = 1 CW Offset=1000 LoopbackTX=0 \n"
              "\n\n------------- Testing CONFIGURATION COMMAND GROUP\n");
    for (size_t i = 0; i < lines.size(); i++)
        lines[i].at = 10.0 * i;
    const double pushAt = lines[lines.size() - 4].at, endAt = lines.back().at;
    UnitRecord judged = q7report::JudgeTranscript(lines, q7report::Limits::Default());
    const Check *floor = Find(judged, "GetRxSpectrum: Rx spectrum noise floor");
    ASSERT_NE(floor, nullptr);
    EXPECT_TRUE(floor->passed) << floor->message;
    EXPECT_DOUBLE_EQ(floor->seconds, pushAt);
    ASSERT_NE(Find(judged, "run complete"), nullptr);
    EXPECT_DOUBLE_EQ(judged.checks[2].seconds, endAt - pushAt);  // the run's first check
}

// The closed world: whatever line of a healthy run the plan needs (a verdict,
// a state, a measured value, an entry of a measured list), deleting it,
// repeating it or spoiling its last word fails the unit. Only a refused
// write's words are the device library's, and any words will do.
TEST(ReportTest, EveryLineThePlanNeedsFailsTheUnitWhenMissingRepeatedOrSpoilt)
{
    const std::vector<std::string> lines = HealthyLines();
    const UnitRecord judged = Judge(Golden("healthy_run"));
    ASSERT_TRUE(judged.Passed());
    std::map<size_t, bool> needed;  // line index, and whether its words are the library's
    for (const Check &check : judged.checks) {
        if (check.classname.rfind("automated.", 0) != 0)
            continue;
        size_t at = check.line - 1;
        needed[at] = check.expectedError;
        const q7report::ResultLine first = q7report::Classify(lines[at]).result;
        if (first.kind == ResultLine::kListEntry || first.kind == ResultLine::kSpectrumRow)
            while (at + 1 < lines.size() && q7report::Classify(lines[at + 1]).result.label == first.label)
                needed[++at] = false;
    }
    ASSERT_GE(needed.size(), 150u);
    for (const auto &[at, libraryWords] : needed) {
        const std::string &line = lines[at];
        EXPECT_FALSE(JudgeEdited(lines, at, {}).Passed()) << "deleted: " << line;
        EXPECT_FALSE(JudgeEdited(lines, at, {line, line}).Passed()) << "repeated: " << line;
        std::string spoilt = q7report::TrimRight(line);
        spoilt = spoilt.substr(0, spoilt.find_last_of(" \t=") + 1) + "x";
        if (!libraryWords) {
            EXPECT_FALSE(JudgeEdited(lines, at, {spoilt}).Passed()) << "spoilt: " << spoilt;
        }
    }
}

// The plan's names at the edges of each section: its first and last items
// named and classed by it. A section whose heading is lost misses every item
// it plans, each by its own name, class and kind; its heading shown twice, a
// heading the plan does not know, or a verdict after its last is an
// unexpected line of that section.
TEST(ReportTest, EverySectionNamesItsItemsByThePlanUpToItsEdges)
{
    const std::vector<std::string> lines = HealthyLines();
    const UnitRecord judged = Judge(Golden("healthy_run"));
    for (const RunSection &section : kRunSections) {
        // The section's group is the one whose heading the run printed last before it.
        size_t heading = 0;
        std::string group;
        for (;; heading++) {
            ASSERT_LT(heading, lines.size()) << section.title;
            const q7report::ClassifiedLine line = q7report::Classify(lines[heading]);
            if (line.kind != q7report::ClassifiedLine::kSectionHeading)
                continue;
            for (const RunGroup &runGroup : kRunGroups)
                if (line.label == runGroup.heading)
                    group = runGroup.name;
            if (line.label == section.title)
                break;
        }
        const std::string classname = "automated." + group;
        auto unexpectedAt = [&](const UnitRecord &record, size_t line) {
            const Check *unexpected = Find(record, std::string(section.title) + ": unexpected line");
            return unexpected && !unexpected->passed && unexpected->classname == classname && unexpected->line == line;
        };
        EXPECT_TRUE(unexpectedAt(JudgeEdited(lines, heading, {lines[heading], lines[heading]}), heading + 2))
            << section.title;
        EXPECT_TRUE(unexpectedAt(JudgeEdited(lines, heading, {lines[heading], lines[heading] + " again"}), heading + 2))
            << section.title;

        std::vector<std::string> names, missed;  // the section's items: their checks, and what each missed says
        std::string lastVerdict;
        for (const RunItem &item : kRunItems) {
            if (std::string(item.section) != section.title)
                continue;
            names.push_back(std::string(item.command ? item.command : item.section) + ": " + item.name);
            bool checked = item.kind == kRunVerdict || item.kind == kRunState || item.kind == kRunRefusal;
            missed.push_back(std::string(checked ? "not checked: " : "not measured: ") + item.name + " (" + group +
                             " group, before line ");
            if (item.kind == kRunVerdict)
                lastVerdict = names.back();
        }
        if (names.empty())
            continue;
        const Check *first = Find(judged, names.front()), *last = Find(judged, names.back());
        ASSERT_TRUE(first && last) << section.title;
        EXPECT_TRUE(first->classname == classname && last->classname == classname && first->line <= last->line);
        const UnitRecord lost = JudgeEdited(lines, heading, {});
        for (size_t i = 0; i < names.size(); i++) {
            auto check = std::find_if(lost.checks.begin(), lost.checks.end(),
                                      [&](const Check &c) { return c.name == names[i] && !c.passed; });
            ASSERT_NE(check, lost.checks.end()) << names[i];
            EXPECT_EQ(check->classname, classname) << names[i];
            EXPECT_EQ(check->message.substr(0, missed[i].size()), missed[i]) << names[i];
        }
        if (!lastVerdict.empty()) {
            const size_t at = Find(judged, lastVerdict)->line;
            const UnitRecord repeated = JudgeEdited(lines, at - 1, {lines[at - 1], lines[at - 1]});
            EXPECT_TRUE(Find(repeated, lastVerdict)->passed && unexpectedAt(repeated, at + 1)) << lastVerdict;
        }
    }
}

TEST(ReportTest, ResultLinesGiveTheirValuesUnitsAndNamesAndNothingElse)
{
    struct Case {
        const char *line;
        ResultLine::Kind kind;
        const char *label;
        std::vector<double> values;
        const char *unit;
        const char *quantity;
    } cases[] = {
        {"    Rx1 RSSI              =  -59.67 dBm", ResultLine::kValue, "Rx1 RSSI", {-59.67}, "dBm", "Rx1 RSSI"},
        {"    Rx1 ADC clip count    = 3 (0.01 %)", ResultLine::kValue, "Rx1 ADC clip count", {3}, "", "Rx1 ADC clip count"},
        {"    Frequency offset (PPM) = 0.429", ResultLine::kValue, "Frequency offset (PPM)", {0.429}, "PPM",
         "Frequency offset (PPM)"},
        {"     GP ADC mux setting (0-3) ?      Value = 518", ResultLine::kValue, "Value", {518}, "", "Value"},
        {"PGA gain correction =   0.22  -0.10 dB", ResultLine::kValue, "PGA gain correction", {0.22, -0.10}, "dB",
         "PGA gain correction"},
        {"Tx Ext Attn Step[ 3] =  5.95 dB", ResultLine::kListEntry, "Tx Ext Attn Step", {5.95}, "dB", "Tx Ext Attn Step"},
        {"LCTrimArray[11] = 42", ResultLine::kListEntry, "LCTrimArray", {42}, "", "LCTrimArray"},
        {"  16:   12.3    9.8", ResultLine::kSpectrumRow, "Rx spectrum", {12.3, 9.8}, "dB", "Rx spectrum"},
        {"Setting poer to +10 dBm ...Read  10 dBm  PASS", ResultLine::kValue, "Tx output power read back at +10 dBm",
         {10}, "dBm", "Tx output power"},
        {"Setting power to -10 dBm ...Read -10 dBm", ResultLine::kValue, "Tx output power read back at -10 dBm",
         {-10}, "dBm", "Tx output power"},  // cut before its verdict
        {"Testing Get GP ADC Value  00 101 200 1E", ResultLine::kValue, "GP ADC value", {0, 257, 512, 30}, "",
         "GP ADC value"},
        {"    Temperature = nan C", ResultLine::kValue, "Temperature", {NAN}, "C", "Temperature"},
        {"    Frame error rate = 0.25 %", ResultLine::kValue, "Frame error rate", {0.25}, "%", "Frame error rate"},
        // Codes, texts, several labels and prompts are no values.
        {"          RF checksum = 632B", ResultLine::kNone, "", {}, "", ""},
        {"    RFIC register data = 00007135", ResultLine::kNone, "", {}, "", ""},
        {"    DUT Mode        = Normal (0)", ResultLine::kNone, "", {}, "", ""},
        {"Read:  Freq = 2500000 - BW = 10000 PASS", ResultLine::kNone, "", {}, "", ""},
        {"    Cal date    = 24/03/18", ResultLine::kNone, "", {}, "", ""},
        {"    Offset = 0x10", ResultLine::kNone, "", {}, "", ""},
        {"    Center frequency (kHz)  ? ", ResultLine::kNone, "", {}, "", ""},
        {"Read back [2] = 17 - Expected [2] = 18 - Verify ERROR", ResultLine::kNone, "", {}, "", ""},
        {"Step[a] = 3", ResultLine::kNone, "", {}, "", ""},
        {"*Total = 5 dB", ResultLine::kNone, "", {}, "", ""},  // a label starts with a letter, digit or '#'
    };
    for (const Case &one : cases) {
        ResultLine parsed = q7report::ParseResultLine(one.line);
        EXPECT_EQ(parsed.kind, one.kind) << one.line;
        EXPECT_EQ(parsed.label, one.label) << one.line;
        EXPECT_EQ(parsed.unit, one.unit) << one.line;
        EXPECT_EQ(parsed.quantity, one.quantity) << one.line;
        ASSERT_EQ(parsed.values.size(), one.values.size()) << one.line;
        for (size_t i = 0; i < one.values.size(); i++)
            if (std::isnan(one.values[i]))
                EXPECT_TRUE(std::isnan(parsed.values[i])) << one.line;
            else
                EXPECT_DOUBLE_EQ(parsed.values[i], one.values[i]) << one.line;
    }
    EXPECT_EQ(q7report::ParseResultLine("  16:   12.3    9.8").index, 16u);
    EXPECT_EQ(q7report::ParseResultLine("LCTrimArray[11] = 42").index, 11u);
}

TEST(ReportTest, ValuesAreJudgedByTheirLimitsInclusiveAndInTheirUnit)
{
    // Temperature: limits 30 to 45 C, marginal band 32 to 42 C.
    struct Case {
        const char *lines;
        const char *result;
        const char *message;
    } cases[] = {
        {"    Temperature = 40 C\n", "PASS", ""},
        {"    Temperature = 45 C\n", "MARGINAL",
         "Temperature = 45 C is inside its limits 30 to 45 C but outside its marginal band 32 to 42 C"},
        {"    Temperature = 30 C\n", "MARGINAL",
         "Temperature = 30 C is inside its limits 30 to 45 C but outside its marginal band 32 to 42 C"},
        {"    Temperature = 46 C\n", "FAIL", "Temperature = 46 C is outside its limits 30 to 45 C"},
        {"    Temperature = nan C\n", "FAIL", "Temperature = nan C is outside its limits 30 to 45 C"},
        {"    Temperature = 33 F\n", "FAIL", "Temperature is in \"F\", its limits in \"C\""},
        {"Tx Ext Attn Step[ 0] =  0.00 dB\nTx Ext Attn Step[ 1] = 41.00 dB\n\n", "FAIL",
         "Tx Ext Attn Step[1] = 41 dB is outside its limits 0 to 40 dB"},
    };
    for (const Case &one : cases) {
        UnitRecord judged = Judge(std::string(kSessionStart) + "GetTemperature:\n" + one.lines +
                                  "\nGetTemperature was SUCCESSFUL.\n\n******** Tx Commands ********\n");
        ASSERT_EQ(judged.measurements.size(), 1u) << one.lines;
        const Check &check = judged.checks.at(0);
        EXPECT_EQ(check.message, one.message) << one.lines;
        EXPECT_EQ(check.passed, *one.result != 'F') << one.lines;
        EXPECT_EQ(check.marginal, *one.result == 'M') << one.lines;
        EXPECT_EQ(judged.measurements[0].withinLimits, check.passed) << one.lines;
        EXPECT_EQ(check.name, "GetTemperature: " + judged.measurements[0].name);
    }
}

// A product's table moves limits; it never switches one off by a typo.
TEST(ReportTest, ALimitsTableGivesEveryPlannedQuantityItsLimitsOrIsRefused)
{
    const std::string plan = q7report::Limits::Default().Json();
    std::string error;
    std::optional<q7report::Limits> same = q7report::Limits::Parse(plan, error);
    ASSERT_TRUE(same) << error;
    EXPECT_EQ(same->Json(), plan);
    auto with = [&](const std::string &from, const std::string &to) {
        std::string table = plan;
        size_t at = table.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return table.replace(at, from.size(), to);
    };
    std::string hotter = with("\"low\": 30.0,\n      \"high\": 45.0", "\"low\": 25.0,\n      \"high\": 60.0");
    std::optional<q7report::Limits> moved = q7report::Limits::Parse(hotter, error);
    ASSERT_TRUE(moved) << error;
    EXPECT_EQ(moved->Find("Temperature")->high, 60);

    struct Refusal {
        std::string table;
        const char *error;
    } refusals[] = {
        {with("\"Temperature\"", "\"Temprature\""), "\"Temprature\" is no quantity the automated run measures"},
        {R"({"limits": {}})", "no limits for \"Temperature\""},
        {with("\"unit\": \"C\",", ""), "\"Temperature\" needs its \"unit\""},
        {with("\"unit\": \"C\"", "\"unit\": \"F\""), "\"Temperature\" is measured in \"C\", not \"F\""},
        {with("\"high\": 45.0", "\"high\": \"45\""), "\"Temperature\" needs a number \"high\""},
        {with("\"high\": 45.0", "\"hihg\": 45.0"), "\"Temperature\" has a member \"hihg\" that limits do not have"},
        {with("\"marginal_high\": 42.0", "\"marginal_high\": 46.0"), "\"Temperature\"'s marginal band is not inside its limits"},
        {with("\"low\": 30.0", "\"low\": 50.0"), "\"Temperature\" has its low limit above its high one"},
        {"[]", "no \"limits\" object"},
        {"{\"limits\": 3", "not JSON"},
    };
    for (const Refusal &refusal : refusals) {
        EXPECT_FALSE(q7report::Limits::Parse(refusal.table, error)) << refusal.error;
        EXPECT_EQ(error, refusal.error);
    }
}

TEST(ReportTest, TheUnitIsNamedAndEveryValueAndListRecordedOnce)
{
    UnitRecord judged = Judge(Golden("healthy_run"));
    EXPECT_EQ(judged.Identity("mac_address"), "02:1A:C7:30:5E:81");
    EXPECT_EQ(judged.Identity("cal_date"), "24/03/18");
    EXPECT_EQ(judged.Identity("rf_chip_version"), "7135");
    EXPECT_EQ(judged.Simulated(), true);
    EXPECT_EQ(q7report::UnitName(judged, {}), "02:1A:C7:30:5E:81");
    q7report::RunContext named;
    named.unit = "SN1042";
    EXPECT_EQ(q7report::UnitName(judged, named), "SN1042");

    std::map<std::string, const q7report::Measurement *> byName;
    for (const q7report::Measurement &measurement : judged.measurements)
        EXPECT_TRUE(byName.emplace(measurement.name, &measurement).second) << measurement.name;
    ASSERT_TRUE(byName.count("Rx spectrum") && byName.count("LCTrimArray") && byName.count("Tx Ext Attn Step"));
    EXPECT_EQ(byName["Rx spectrum"]->values.size(), 1024u);
    EXPECT_DOUBLE_EQ(byName["Rx spectrum"]->values[17], 12.3);
    EXPECT_EQ(byName["LCTrimArray"]->values.size(), 12u);
    EXPECT_EQ(byName["Tx Ext Attn Step"]->values.size(), 20u);
    // A list one entry short says so.
    const std::vector<std::string> lines = HealthyLines();
    const size_t lastTrim = std::find(lines.begin(), lines.end(), "LCTrimArray[11] = 42") - lines.begin();
    ASSERT_LT(lastTrim, lines.size());
    const UnitRecord shortList = JudgeEdited(lines, lastTrim, {});
    const Check *trim = Find(shortList, "Calibrate LC Trim: LCTrimArray");
    ASSERT_NE(trim, nullptr);
    EXPECT_NE(trim->message.find(" gives 11 entries, 12 planned"), std::string::npos) << trim->message;
    // A count of 0 is a count: the twelve entries after it are too many.
    const size_t count = std::find(lines.begin(), lines.end(), " #Frequency=12") - lines.begin();
    ASSERT_LT(count, lines.size());
    const UnitRecord none = JudgeEdited(lines, count, {" #Frequency=0"});
    const Check *noTrim = Find(none, "Calibrate LC Trim: LCTrimArray");
    ASSERT_NE(noTrim, nullptr);
    EXPECT_NE(noTrim->message.find(" gives 12 entries, 0 planned"), std::string::npos) << noTrim->message;
    EXPECT_DOUBLE_EQ(byName["Rx spectrum peak"]->values[0], 52.6);
    EXPECT_DOUBLE_EQ(byName["Temperature"]->values[0], 33);
    EXPECT_EQ(byName["Temperature"]->classname, "automated.Other commands");
    EXPECT_EQ(byName.count("CW Offset #7"), 1u);
    // A hex dump is no spectrum, and a version no value.
    EXPECT_EQ(byName.count("Rx spectrum #2"), 0u);
    EXPECT_EQ(byName.count("PHY firmware version"), 0u);
}

TEST(ReportTest, TheJunitFileHasASuitePerUnitWithItsIdentityAndStableCaseNames)
{
    q7report::RunContext context;
    context.hostname = "station-7";
    context.station = "ST7";
    context.reportVersion = "9.9";
    UnitRecord healthy = Judge(Golden("healthy_run")), stuck = Judge(Golden("stuck_led"));
    healthy.source = "a.log";
    stuck.source = "b.log";
    healthy.startMs = (86400 + 3661) * 1000LL + 250;
    healthy.seconds = 2.5;
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(q7report::JunitXml({healthy, stuck}, context).c_str()), tinyxml2::XML_SUCCESS);
    const tinyxml2::XMLElement *suite = document.FirstChildElement("testsuites")->FirstChildElement("testsuite");
    ASSERT_NE(suite, nullptr);
    EXPECT_STREQ(suite->Attribute("name"), "02:1A:C7:30:5E:81 (a.log)");
    EXPECT_STREQ(suite->Attribute("timestamp"), "1970-01-02T01:01:01");
    EXPECT_STREQ(suite->Attribute("hostname"), "station-7");
    EXPECT_STREQ(suite->Attribute("time"), "2.500");
    EXPECT_EQ(suite->IntAttribute("tests"), static_cast<int>(healthy.checks.size()));
    EXPECT_EQ(suite->IntAttribute("failures"), 0);
    std::map<std::string, std::string> properties;
    for (auto *property = suite->FirstChildElement("properties")->FirstChildElement("property"); property;
         property = property->NextSiblingElement("property"))
        properties[property->Attribute("name")] = property->Attribute("value");
    EXPECT_EQ(properties["mac_address"], "02:1A:C7:30:5E:81");
    EXPECT_EQ(properties["simulated"], "yes");
    EXPECT_EQ(properties["station"], "ST7");
    EXPECT_EQ(properties["report_version"], "9.9");
    EXPECT_NE(std::string(suite->FirstChildElement("system-out")->GetText()).find("GetMACAddress"), std::string::npos);

    const tinyxml2::XMLElement *second = suite->NextSiblingElement("testsuite");
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second->Attribute("name"), "02:1A:C7:30:5E:81 (b.log)");
    EXPECT_EQ(second->IntAttribute("id"), 1);
    EXPECT_EQ(second->IntAttribute("failures"), 1);
    const tinyxml2::XMLElement *failing = nullptr;
    for (auto *test = second->FirstChildElement("testcase"); test && !failing; test = test->NextSiblingElement("testcase"))
        if (test->FirstChildElement("failure") != nullptr)
            failing = test;
    ASSERT_NE(failing, nullptr);
    EXPECT_STREQ(failing->Attribute("classname"), "automated.Other commands");
    EXPECT_STREQ(failing->Attribute("name"), "ReadGPIOState, SetGPIOConfiguration, and SetGPIOPinState: LED write 1");
    const tinyxml2::XMLElement *failure = failing->FirstChildElement("failure");
    EXPECT_STREQ(failure->Attribute("message"), "GPIO LED write 1 test: FAIL");
    EXPECT_STREQ(failure->Attribute("type"), "FAIL");
    EXPECT_NE(std::string(failure->GetText()).find("Setting GPIO 12 to 1"), std::string::npos);
    EXPECT_NE(std::string(second->FirstChildElement("system-err")->GetText()).find("LED write 1"), std::string::npos);
}

TEST(ReportTest, TheJsonRecordNamesTheUnitItsChecksAndItsMeasurements)
{
    q7report::RunContext context;
    context.unit = "SN1042";
    context.operatorName = "Ada";
    context.reportVersion = "9.9";
    UnitRecord judged = Judge(Golden("hot_unit"));
    nlohmann::json document = nlohmann::json::parse(q7report::JsonDocument({judged}, context));
    EXPECT_EQ(document["schema_version"], q7report::kJsonSchemaVersion);
    EXPECT_EQ(document["report_version"], "9.9");
    EXPECT_EQ(document["verdict"], "FAIL");
    const nlohmann::json &unit = document["units"][0];
    EXPECT_EQ(unit["unit"]["id"], "SN1042");
    EXPECT_EQ(unit["unit"]["simulated"], true);
    EXPECT_EQ(unit["unit"]["identity"]["mac_address"], "02:1A:C7:30:5E:81");
    EXPECT_EQ(unit["context"]["operator"], "Ada");
    EXPECT_TRUE(unit["context"]["station"].is_null());
    EXPECT_EQ(unit["verdict"], "FAIL");
    EXPECT_EQ(unit["checks"].size(), judged.checks.size());
    bool hot = false;
    for (const nlohmann::json &measurement : unit["measurements"]) {
        if (measurement["name"] == "Rx spectrum") {
            EXPECT_EQ(measurement["values"].size(), 1024u);
        }
        if (measurement["name"] != "Temperature")
            continue;
        hot = true;
        EXPECT_EQ(measurement["value"], 133);
        EXPECT_EQ(measurement["unit"], "C");
        EXPECT_EQ(measurement["high"], 45);
        EXPECT_EQ(measurement["result"], "FAIL");
    }
    EXPECT_TRUE(hot);
}

// A transcript kept on a host that ends its lines with CR LF reads as the same lines.
TEST(ReportTest, ATranscriptSavedWithCrLfIsJudgedLineForLine)
{
    const std::string healthy = Golden("healthy_run");
    std::string saved;
    for (char c : healthy)
        saved += c == '\n' ? std::string("\r\n") : std::string(1, c);
    const UnitRecord plain = Judge(healthy), crlf = Judge(saved);
    EXPECT_TRUE(crlf.Passed());
    EXPECT_EQ(crlf.checks.size(), plain.checks.size());
    EXPECT_EQ(crlf.measurements.size(), plain.measurements.size());
}

// Any bytes reach every file as text it can carry: JSON keeps a control
// character, XML and HTML show its picture (U+2401 for 0x01), and a byte
// that is no UTF-8 is U+FFFD everywhere.
TEST(ReportTest, MarkupAndOddBytesInAnErrorTextReachEveryFileIntact)
{
    UnitRecord judged = Judge(std::string(kSessionStart) +
                              "Read DSD Bytes:\n\nERROR: <a> & \"b\" </script> \x01\xff\n\n******** Tx Commands ********\n");
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(q7report::JunitXml({judged}, {}).c_str()), tinyxml2::XML_SUCCESS);
    const tinyxml2::XMLElement *failure = document.FirstChildElement("testsuites")
                                              ->FirstChildElement("testsuite")
                                              ->FirstChildElement("testcase")
                                              ->FirstChildElement("failure");
    ASSERT_NE(failure, nullptr);
    EXPECT_STREQ(failure->Attribute("message"), "ERROR: <a> & \"b\" </script> \u2401\ufffd");

    nlohmann::json record = nlohmann::json::parse(q7report::JsonDocument({judged}, {}));
    EXPECT_EQ(record["units"][0]["checks"][0]["message"], "ERROR: <a> & \"b\" </script> \x01\ufffd");

    std::string page = q7report::HtmlPage({judged}, {}, "", "");
    EXPECT_EQ(page.find("<a>"), std::string::npos);
    EXPECT_EQ(page.find("</script> \u2401"), std::string::npos);
    EXPECT_NE(page.find("ERROR: &lt;a&gt; &amp; &quot;b&quot; &lt;/script&gt; \u2401\ufffd"), std::string::npos);

    // XML has no place for U+FFFE and U+FFFF; UTF-8 none for the surrogates
    // (the first and the last of them here) or for a lead byte F8, each byte
    // of which is replaced. A four-byte character led by F4 is kept.
    UnitRecord odd = Judge(std::string(kSessionStart) +
                           "Read DSD Bytes:\n\nERROR: \uFFFE\uFFFF \xed\xa0\x80 \xed\xbf\xbf \xf8\x90\x80\x80 \U0010FFFD\n\n"
                           "******** Tx Commands ********\n");
    ASSERT_EQ(document.Parse(q7report::JunitXml({odd}, {}).c_str()), tinyxml2::XML_SUCCESS);
    EXPECT_STREQ(document.FirstChildElement("testsuites")
                     ->FirstChildElement("testsuite")
                     ->FirstChildElement("testcase")
                     ->FirstChildElement("failure")
                     ->Attribute("message"),
                 "ERROR: \ufffd\ufffd \ufffd\ufffd\ufffd \ufffd\ufffd\ufffd \ufffd\ufffd\ufffd\ufffd \U0010FFFD");
}

// The page is written in 64 KiB pieces of the units' sections: a last piece
// of one byte is kept too. Each character of an error text is two bytes of
// its unit's section (its message and its evidence).
TEST(ReportTest, APageKeepsTheLastByteOfItsSections)
{
    const std::string tail = "</section>\n<script>\n// A unit's plots";
    auto page = [](size_t errorLength) {
        UnitRecord unit = Judge(std::string(kSessionStart) + "Read DSD Bytes:\n\nERROR: " +
                                std::string(errorLength, 'x') + "\n\n******** Tx Commands ********\n");
        return q7report::HtmlPage({unit}, {}, "", "");
    };
    auto sectionsLength = [&](const std::string &html) {
        return html.find(tail) + tail.find('<', 1) - (html.find("</table>\n</section>\n") + 20);
    };
    const size_t first = (65536 + 1 - sectionsLength(page(0))) / 2;
    bool found = false;
    for (size_t length = first - 2; length < first + 2 && !found; length++) {
        std::string html = page(length);
        found = sectionsLength(html) % 65536 == 1;
    }
    EXPECT_TRUE(found) << "no page had sections one byte past 64 KiB with that byte kept";
}

// A batch spools a record per unit, each written aside and renamed: the
// place each one held for the signal handler is free again once it is in,
// so that the output still being written when a signal comes is removed,
// however many came before it.
TEST(ReportTest, ASignalRemovesTheOutputStillBeingWrittenAfterManyWritten)
{
    char folder[] = "/tmp/q7report-signal-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string dir = folder;
    EXPECT_EXIT(
        {
            q7report::RemoveOutputsOnSignals();
            for (int unit = 0; unit < 12; unit++)
                q7report::WriteFile(dir + "/unit" + std::to_string(unit) + ".json", "{}\n");
            q7report::OutputFile last(dir + "/last.json");
            if (last.Open())
                raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    size_t files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(dir))
        files += entry.path().filename().string().rfind("unit", 0) == 0 ? 1 : 100;
    EXPECT_EQ(files, 12u) << "the unit files, and nothing of the one cut short";
    std::filesystem::remove_all(dir);
}

// --since and --until: every form of ISO 8601 the tool writes or a line types,
// as UTC milliseconds; an end reaches to the end of its last unit; anything
// impossible or malformed is refused.
TEST(ReportTest, HistoryTimesAreIso8601AndImpossibleOnesAreRefused)
{
    const long long day = 1795564800000;  // 2026-11-25T00:00:00Z
    struct Case {
        const char *text;
        long long start;  // -1: refused
        long long end;
    } cases[] = {
        {"2026-11-25", day, day + 86399999},
        {"2026-11-25T10:00", day + 36000000, day + 36059999},
        {"2026-11-25T10:00:05", day + 36005000, day + 36005999},
        {"2026-11-25T10:00:05.25Z", day + 36005250, day + 36005250},
        {"2026-11-25 10:00:05z", day + 36005000, day + 36005999},
        {"2026-11-25T10:00+01:00", day + 32400000, day + 32459999},
        {"2026-11-25T10:00-0530", day + 55800000, day + 55859999},
        {"2026-11-25T10:00+01", day + 32400000, day + 32459999},
        {"2026-11-25T23:59:59", day + 86399000, day + 86399999},
        {"2026-11-25T10:00+23:59", day - 50340000, day - 50280001},
        {"2024-02-29", 1709164800000, 1709251199999},
        {"1969-12-31", -86400000, -1},
        {"2000-02-29", 951782400000, 951868799999},
        {"2100-02-28", 4107456000000, 4107542399999},
        {"2100-03-01", 4107542400000, 4107628799999},
        {"2100-02-29", -1, 0},
        {"2026-02-29", -1, 0}, {"2026-02-30", -1, 0}, {"2026-13-01", -1, 0}, {"2026-00-10", -1, 0},
        {"2026-11-00", -1, 0}, {"2026-11-25T24:00", -1, 0}, {"2026-11-25T10:60", -1, 0},
        {"2026-11-25T10:00:60", -1, 0}, {"2026-11-25T10:00+24:00", -1, 0}, {"2026-11-25T10:00+01:60", -1, 0}, {"2026-1x-01", -1, 0},
        {"2026-11-1", -1, 0}, {"2026-11-25T10", -1, 0}, {"2026-11-25T10:00:05.", -1, 0},
        {"2026-11-25T10:00Zx", -1, 0}, {"2026-11-25T10:00+1", -1, 0}, {"2026-11-25T10:00+01:3", -1, 0}, {"2026/11/25", -1, 0}, {"", -1, 0},
    };
    for (const Case &c : cases) {
        std::optional<long long> start = q7report::ParseHistoryTime(c.text, false);
        std::optional<long long> end = q7report::ParseHistoryTime(c.text, true);
        if (c.start == -1) {
            EXPECT_FALSE(start || end) << c.text;
            continue;
        }
        ASSERT_TRUE(start && end) << c.text;
        EXPECT_EQ(*start, c.start) << c.text;
        EXPECT_EQ(*end, c.end) << c.text;
    }
    // Every month's last day, and none after it.
    const int lastDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; month++) {
        char last[32], after[32];
        std::snprintf(last, sizeof last, "2026-%02d-%02d", month, lastDays[month - 1]);
        std::snprintf(after, sizeof after, "2026-%02d-%02d", month, lastDays[month - 1] + 1);
        EXPECT_TRUE(q7report::ParseHistoryTime(last, false).has_value()) << last;
        EXPECT_FALSE(q7report::ParseHistoryTime(after, false).has_value()) << after;
    }
    EXPECT_EQ(q7report::UtcTime(day + 36005250), "2026-11-25T10:00:05.250Z");
    // A host whose clock was set before 1970: its seconds count down to the epoch.
    EXPECT_EQ(q7report::UtcTime(-1000250), "1969-12-31T23:43:19.750Z");
}

}  // namespace
