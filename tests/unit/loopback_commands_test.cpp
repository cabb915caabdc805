#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "commands.h"
#include "console_capture.h"

namespace {

class LoopbackCommandsTest : public SimulatedDeviceTest {
protected:
    void SetUp() override
    {
        SimulatedDeviceTest::SetUp();
        ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutLoopback, 0, 1000, 0), nullptr);
    }
};

TEST_F(LoopbackCommandsTest, TRSwitchStatesGoToTheirOwnAntennas)
{
    EXPECT_EQ(RunHandler(TestSetTRSwitch, hCal, "0\n1\n").result, 0);
    EXPECT_EQ(device().cal.trSwitch().ant1, 0u);
    EXPECT_EQ(device().cal.trSwitch().ant2, 1u);
}

TEST_F(LoopbackCommandsTest, LCTrimCountOfZeroPrintsNoListAndACountAbove12StopsAt12)
{
    device().cal.ForceLCTrimCount(0);
    EXPECT_EQ(RunHandler(TestCalibrateLCTrim, hCal).output,
              "Calibrate LC Trim:\n\n #Frequency=0\n\nCalibrateLCTrim was SUCCESSFUL.\n");

    device().cal.ForceLCTrimCount(40);
    HandlerRun run = RunHandler(TestCalibrateLCTrim, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(Contains(run.output, "\n #Frequency=40\nLCTrimArray[0] = "));
    EXPECT_EQ(Count(run.output, "LCTrimArray["), 12u);
}

TEST_F(LoopbackCommandsTest, FEStepTableHasRx1LeftAndRx2Right)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutAgcFreeRun, 0, 1000, 0), nullptr);
    HandlerRun run = RunHandler(TestCalibrateFESteps, hCal, "5\n-40\n-40.0\n");
    EXPECT_EQ(run.result, 0);
    const auto &mid = device().cal.feSteps().lnaMidGainStep;
    char row[80];
    std::snprintf(row, sizeof row, "LNA mid gain step   = %6.2f %6.2f dB\n", mid[0], mid[1]);
    EXPECT_TRUE(Contains(run.output, row)) << run.output;
}

}  // namespace
