#include <gtest/gtest.h>

#include <string>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using OptionCommandsTest = SimulatedDeviceTest;

const char kAllOptionsAndReturn[] = "\n    8. All options                      -1. Return to Main Menu\n\nENTER Option ID : ";
const char kInvalid[] = "ERROR: Invalid option ID. Please try again.\n\n\nENTER Option ID : ";

TEST_F(OptionCommandsTest, AGetErrorEndsTheCommandWithoutTheSuccessLine)
{
    q7sim::control::FailNext("Q7_GetOptionByID", 1, "Library busy");
    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "8\n-1\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, std::string(kAllOptionsAndReturn) + "\nERROR: Library busy\n"));
}

TEST_F(OptionCommandsTest, WithEverySlotReservedOnlyAllOptionsAndReturnAreAccepted)
{
    for (uint32_t slot = 0; slot < 8; slot++)
        device().options.ForceInfo(slot, "x", true);
    std::string picker;
    for (uint32_t slot = 0; slot < 8; slot += 2)
        picker += "\n    " + std::to_string(slot) + ". <Reserved>                        " + std::to_string(slot + 1) +
                  ". <Reserved>                    ";
    picker += kAllOptionsAndReturn;

    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "0\n8\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGet Option By ID:\n" + picker + kInvalid + "\n\n" + picker +
                              "\nTestGetOptionByID was SUCCESSFUL.\n");
}

TEST_F(OptionCommandsTest, LongNamesAreCutTo30InThePickerAnd35InTheValueList)
{
    const std::string name40 = "Forty characters of option name, exactly";
    device().options.ForceInfo(0, name40, false);
    device().options.ForceInfo(1, std::string(90, 'L'), false);

    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "0\n1\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(Contains(run.output, "\n    0. " + name40.substr(0, 30) + "    1. " + std::string(30, 'L') + "\n"));
    EXPECT_TRUE(Contains(run.output, "\n" + name40.substr(0, 35) + " = 0\n"));
    EXPECT_TRUE(Contains(run.output, "\n" + std::string(35, 'L') + " = 2000\n"));
}

TEST_F(OptionCommandsTest, EndOfInputAtThePickerAbandonsTheCommand)
{
    for (auto handler : {TestGetOptionByID, TestSetOptionByID}) {
        HandlerRun run = RunHandler(handler, hCal, "");
        EXPECT_EQ(run.result, -1);
        EXPECT_TRUE(EndsWith(run.output, "\n\nENTER Option ID : \nEnd of input: command abandoned.\n")) << run.output;
    }
}

}  // namespace
