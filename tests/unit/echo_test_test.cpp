#include <gtest/gtest.h>

#include <string>

#include "console_capture.h"
#include "diagnostics.h"

namespace {

using EchoTestTest = SimulatedDeviceTest;

TEST_F(EchoTestTest, TheTypedLengthIsSentAndNothingIsSentForATooLongMessage)
{
    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "64\n").result, 0);
    EXPECT_EQ(device().echo.bytesEchoed(), 64u);
    EXPECT_EQ(device().echo.exchanges(), 1u);

    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "2049\n").result, -1) << "one message carries at most 2048 bytes";
    EXPECT_EQ(device().echo.exchanges(), 1u);
}

}  // namespace
