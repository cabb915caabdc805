#include <gtest/gtest.h>

#include <string>

#include "Device.h"
#include "SimControl.h"
#include "console_capture.h"
#include "diagnostics.h"

namespace {

using EchoTestTest = SimulatedDeviceTest;

const char kHeadingAndPrompt[] = "\nEcho test:\n    Message length in bytes (dec) ? ";

TEST_F(EchoTestTest, ASuccessfulExchangeNamesTheOperationAndTheHandler)
{
    HandlerRun run = RunHandler(TestEchoTest, hCal, "64\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, std::string(kHeadingAndPrompt) +
                              "\nEcho test operation was SUCCESSFUL.\n\nTestEchoTest was SUCCESSFUL.\n");
    EXPECT_EQ(q7sim::control::OpenDevice()->echo.bytesEchoed(), 64u);
}

TEST_F(EchoTestTest, LengthsTheDeviceCannotCarryAreRefused)
{
    HandlerRun zero = RunHandler(TestEchoTest, hCal, "0\n");
    EXPECT_EQ(zero.result, -1);
    EXPECT_EQ(zero.output, std::string(kHeadingAndPrompt) + "\nERROR: Echo message length 0 bytes is out of range (1-2048)\n");
    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "2048\n").result, 0);
    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "2049\n").result, -1);
    ASSERT_EQ(Q7_DisconnectDevice(hCal), nullptr);
    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "8\n").output,
              std::string(kHeadingAndPrompt) + "\nERROR: Device not connected\n");
}

TEST_F(EchoTestTest, NullHandleTextAndEndOfInputSendNothing)
{
    EXPECT_EQ(RunHandler(TestEchoTest, nullptr, "8\n").output, "");
    HandlerRun text = RunHandler(TestEchoTest, hCal, "many\n");
    EXPECT_EQ(text.result, -1);
    EXPECT_EQ(q7sim::control::OpenDevice()->echo.exchanges(), 0u);
    EXPECT_NE(text.output.find("Not a number. Please enter an unsigned decimal number."), std::string::npos);
}

TEST_F(EchoTestTest, SleepAccuracyTestNeedsAHandle)
{
    EXPECT_EQ(RunHandler(SleepAccuracyTest, nullptr).output, "");
    EXPECT_EQ(RunHandler(SleepAccuracyTest, nullptr).result, -1);
}

}  // namespace
