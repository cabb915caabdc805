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

}  // namespace
