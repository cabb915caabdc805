#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using OptionCommandsTest = SimulatedDeviceTest;

q7sim::Options &DeviceOptions() { return q7sim::control::OpenDevice()->options; }

// The four lines of two slots each, as the factory library describes them.
const char kSlotLines[] =
    "\n    0. Trace level (0-3)                 1. Command timeout (ms)          "
    "\n    2. Command retries (0-5)             3. <Reserved>                    "
    "\n    4. <Reserved>                        5. DSD key lifetime (ms)         "
    "\n    6. Trace timestamps (0/1)            7. NVM mode (0=NVM 1/2=buffer)   ";

// "All options" padded to 30, then -1 in the second column.
const std::string kAllOptionsLine = "\n    8. All options" + std::string(19, ' ') + "   -1. Return to Main Menu";

const std::string kGetPicker = kSlotLines + kAllOptionsLine + "\n\nENTER Option ID : ";

const std::string kSetPicker = std::string(kSlotLines) + "\n   -1. Return to Main Menu\n\nENTER Option ID : ";

const char kInvalid[] = "ERROR: Invalid option ID. Please try again.\n\n\nENTER Option ID : ";

TEST_F(OptionCommandsTest, NullHandlePrintsNothing)
{
    for (auto handler : {TestGetOptionByID, TestSetOptionByID}) {
        HandlerRun run = RunHandler(handler, nullptr, "0\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(OptionCommandsTest, ThePickerCellsAre37CharactersWide)
{
    std::istringstream lines(kSlotLines + 1);
    for (std::string line; std::getline(lines, line);)
        EXPECT_EQ(line.size(), 74u) << line;

    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + kGetPicker + "\nTestGetOptionByID was SUCCESSFUL.\n");
}

TEST_F(OptionCommandsTest, OneOptionOrAllOfThemAreShownAndThePickerComesBack)
{
    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "1\n8\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + kGetPicker +
                              "\nCommand timeout (ms)                = 2000\n\n" + kGetPicker +
                              "\nTrace level (0-3)                   = 0"
                              "\nCommand timeout (ms)                = 2000"
                              "\nCommand retries (0-5)               = 2"
                              "\nDSD key lifetime (ms)               = 10000"
                              "\nTrace timestamps (0/1)              = 1"
                              "\nNVM mode (0=NVM 1/2=buffer)         = 0\n\n" +
                              kGetPicker + "\nTestGetOptionByID was SUCCESSFUL.\n");
}

TEST_F(OptionCommandsTest, InvalidChoicesAreRefusedAndAWordChoosesSlotZero)
{
    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "3\n9\n-2\nabc\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + kGetPicker + kInvalid + kInvalid + kInvalid +
                              "\nTrace level (0-3)                   = 0\n\n" + kGetPicker +
                              "\nTestGetOptionByID was SUCCESSFUL.\n");
}

TEST_F(OptionCommandsTest, SetRefusesAllOptionsAndWritesTheChosenSlot)
{
    HandlerRun run = RunHandler(TestSetOptionByID, hCal, "8\n7\n2\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nSet Option By ID:\n" + kSetPicker + kInvalid + "\nOption value = \n" + kSetPicker +
                              "\nTestSetOptionByID was SUCCESSFUL.\n");
    int32_t value = 0;
    ASSERT_EQ(Q7_GetOptionByID(hCal, 7, &value), nullptr);
    EXPECT_EQ(value, 2);

    HandlerRun refused = RunHandler(TestSetOptionByID, hCal, "7\n3\n-1\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.output, "\nSet Option By ID:\n" + kSetPicker +
                                  "\nOption value = \n\nERROR: Option 7 value 3 is out of range (0-2)\n");
}

TEST_F(OptionCommandsTest, AGetErrorEndsTheCommandWithoutTheSuccessLine)
{
    q7sim::control::FailNext("Q7_GetOptionByID", 1, "Library busy");
    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "8\n-1\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + kGetPicker + "\nERROR: Library busy\n");
}

TEST_F(OptionCommandsTest, WithEverySlotReservedOnlyAllOptionsAndReturnAreAccepted)
{
    for (uint32_t slot = 0; slot < 8; slot++)
        DeviceOptions().ForceInfo(slot, "x", true);
    std::string reserved;
    for (uint32_t slot = 0; slot < 8; slot += 2)
        reserved += "\n    " + std::to_string(slot) + ". <Reserved>                        " + std::to_string(slot + 1) +
                    ". <Reserved>                    ";
    const std::string picker = reserved + kAllOptionsLine + "\n\nENTER Option ID : ";

    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "0\n8\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + picker + kInvalid + "\n\n" + picker +
                              "\nTestGetOptionByID was SUCCESSFUL.\n");
}

TEST_F(OptionCommandsTest, LongNamesAreCutTo30InThePickerAnd35InTheValueList)
{
    const std::string name40 = "Forty characters of option name, exactly";
    ASSERT_EQ(name40.size(), 40u);
    DeviceOptions().ForceInfo(0, name40, false);
    DeviceOptions().ForceInfo(1, std::string(90, 'L'), false);

    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "0\n1\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_NE(run.output.find("\n    0. " + name40.substr(0, 30) + "    1. " + std::string(30, 'L') + "\n"),
              std::string::npos);
    EXPECT_NE(run.output.find("\n" + name40.substr(0, 35) + " = 0\n"), std::string::npos);
    EXPECT_NE(run.output.find("\n" + std::string(35, 'L') + " = 2000\n"), std::string::npos);
}

TEST_F(OptionCommandsTest, EndOfInputLeavesThePickerAndAbandonsAValue)
{
    HandlerRun get = RunHandler(TestGetOptionByID, hCal, "");
    EXPECT_EQ(get.result, 0);
    EXPECT_EQ(get.output, "\nGet Option By ID:\n" + kGetPicker + "\nTestGetOptionByID was SUCCESSFUL.\n");

    HandlerRun set = RunHandler(TestSetOptionByID, hCal, "7\n");
    EXPECT_EQ(set.result, -1);
    EXPECT_EQ(set.output,
              "\nSet Option By ID:\n" + kSetPicker + "\nOption value = \nEnd of input: command abandoned.\n");
}

}  // namespace
