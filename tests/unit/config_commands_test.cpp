#include <gtest/gtest.h>

#include <string>

#include "commands.h"
#include "console_capture.h"

namespace {

using ConfigCommandsTest = SimulatedDeviceTest;

TEST_F(ConfigCommandsTest, UnknownModeValuesPrintTheirUnknownNamesWithSignedNumbers)
{
    device().modes.ForceMode(q7sim::DeviceMode{6, 0xFFFFFFFFu, 0, 0});
    std::string get = RunHandler(TestGetDeviceMode, hCal).output;
    EXPECT_TRUE(Contains(get, "    DUT Mode        = Unknown DUT Mode (6)\n"));
    EXPECT_TRUE(Contains(get, "    Modulation type = Unknown modulation type (-1)\n"));

    device().modes.ForceMode(q7sim::DeviceMode{0, 2, 0, 4});
    get = RunHandler(TestGetDeviceMode, hCal).output;
    EXPECT_TRUE(Contains(get, "    Modulation type = 64 QAM (2)\n"));
    EXPECT_TRUE(Contains(get, "\tLoopback =Unknown Transmitter( 4)\n"));
}

TEST_F(ConfigCommandsTest, DeviceErrorsEndTheCommandWithoutResultLines)
{
    ExpectInjectedFaultsReported(hCal, {
        {TestGetBandConfig, "Q7_GetBandConfig", "", "\nGetBandConfig:\n"},
        {TestGetDeviceMode, "Q7_GetDeviceMode", "", "\nGetDeviceMode:\n"},
    });
}

TEST_F(ConfigCommandsTest, EndOfInputSendsNothing)
{
    HandlerRun ended = RunHandler(TestSetBandConfig, hCal, "2400000\n");
    EXPECT_EQ(ended.result, -1);
    uint32_t center = 0, bandwidth = 0;
    ASSERT_EQ(Q7_GetBandConfig(hCal, &center, &bandwidth), nullptr);
    EXPECT_EQ(center, 2500000u);
    EXPECT_EQ(bandwidth, 10000u);
}

}  // namespace
