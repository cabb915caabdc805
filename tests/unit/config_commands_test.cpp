#include <gtest/gtest.h>

#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using ConfigCommandsTest = SimulatedDeviceTest;

TEST_F(ConfigCommandsTest, NullHandlePrintsNothing)
{
    for (auto handler : {TestConnectDevice, TestDisconnectDevice, TestGetDeviceMode, TestSetDeviceMode,
                         TestGetBandConfig, TestSetBandConfig}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1 1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(ConfigCommandsTest, DeviceModeRoundTrips)
{
    HandlerRun set = RunHandler(TestSetDeviceMode, hCal, "5\n1\n-5\n3\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetDeviceMode:\n"
              "For DUT Mode, please enter: 0=Normal  1=Calibration  2=Tx CW  3=Tx OFDMA  4=AGC free-run 5=Loopback\n"
              "    DUT Mode        ? "
              "For Modulation Type, please enter: 0=4 QAM  1=16 QAM  2=64 QAM\n"
              "    Modulation Type ? "
              "\tCW Offset in KHz between -10 to 10 KHz ? "
              "For Loopback Tx, please enter: 0=Disable both  1=Tx1 2=Tx2 3=Both Enabled\n"
              "\tLoopbackTX ? "
              "\nSetDeviceMode was SUCCESSFUL.\n");

    HandlerRun get = RunHandler(TestGetDeviceMode, hCal);
    EXPECT_EQ(get.result, 0);
    EXPECT_EQ(get.output,
              "\nGetDeviceMode:\n"
              "    DUT Mode        = Loopback (5)\n"
              "    Modulation type = 16 QAM (1)\n"
              "\tCW Offset  = -5 KHz\n"
              "\tLoopback =Both TX1 and TX2( 3)\n"
              "\nGetDeviceMode was SUCCESSFUL.\n");
}

TEST_F(ConfigCommandsTest, UnknownModeValuesPrintTheirUnknownNamesWithSignedNumbers)
{
    q7sim::control::OpenDevice()->modes.ForceMode(q7sim::DeviceMode{6, 0xFFFFFFFFu, 0, 0});
    HandlerRun get = RunHandler(TestGetDeviceMode, hCal);
    EXPECT_NE(get.output.find("    DUT Mode        = Unknown DUT Mode (6)\n"), std::string::npos);
    EXPECT_NE(get.output.find("    Modulation type = Unknown modulation type (-1)\n"), std::string::npos);
    EXPECT_NE(get.output.find("\tLoopback =neither TX1 nor TX2 enabled( 0)\n"), std::string::npos);

    q7sim::control::OpenDevice()->modes.ForceMode(q7sim::DeviceMode{0, 0, 0, 4});
    EXPECT_NE(RunHandler(TestGetDeviceMode, hCal).output.find("\tLoopback =Unknown Transmitter( 4)\n"),
              std::string::npos);
}

TEST_F(ConfigCommandsTest, OutOfRangeModeReachesTheDeviceAndItsTextIsShown)
{
    HandlerRun set = RunHandler(TestSetDeviceMode, hCal, "9\n0\n0\n0\n");
    EXPECT_EQ(set.result, -1);
    const std::string tail = "\tLoopbackTX ? \nERROR: DUT mode 9 is out of range (0-5)\n";
    EXPECT_EQ(set.output.substr(set.output.size() - tail.size()), tail);
}

TEST_F(ConfigCommandsTest, BandConfigRoundTripsAndRefusalsAreReported)
{
    HandlerRun set = RunHandler(TestSetBandConfig, hCal, "2533500\n5000\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetBandConfig:\n    Center frequency (kHz)  ?     Bandwidth (kHz)         ? "
              "\nSetBandConfig was SUCCESSFUL.\n");

    HandlerRun get = RunHandler(TestGetBandConfig, hCal);
    EXPECT_EQ(get.result, 0);
    EXPECT_EQ(get.output,
              "\nGetBandConfig:\n"
              "    Center frequency (kHz)  = 2533500\n"
              "    Bandwidth (kHz)         = 5000\n"
              "\nGetBandConfig was SUCCESSFUL.\n");

    HandlerRun refused = RunHandler(TestSetBandConfig, hCal, "2500000\n6000\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_NE(refused.output.find("\nERROR: Bandwidth 6000 kHz is not supported (3500, 5000, 7000, 8750, 10000 kHz)\n"),
              std::string::npos);
}

TEST_F(ConfigCommandsTest, DeviceErrorsEndTheCommandWithoutResultLines)
{
    q7sim::control::FailNext("Q7_GetBandConfig", 1, "Band read timed out");
    HandlerRun get = RunHandler(TestGetBandConfig, hCal);
    EXPECT_EQ(get.result, -1);
    EXPECT_EQ(get.output, "\nGetBandConfig:\n\nERROR: Band read timed out\n");

    q7sim::control::FailNext("Q7_GetDeviceMode", 1, "Mode read timed out");
    HandlerRun mode = RunHandler(TestGetDeviceMode, hCal);
    EXPECT_EQ(mode.result, -1);
    EXPECT_EQ(mode.output, "\nGetDeviceMode:\n\nERROR: Mode read timed out\n");
}

TEST_F(ConfigCommandsTest, DisconnectAndConnectReportTheDeviceState)
{
    HandlerRun disconnect = RunHandler(TestDisconnectDevice, hCal);
    EXPECT_EQ(disconnect.result, 0);
    EXPECT_EQ(disconnect.output, "\nDisconnectDevice:\n     Device disconnected.\n");

    EXPECT_EQ(RunHandler(TestGetDeviceMode, hCal).output, "\nGetDeviceMode:\n\nERROR: Device not connected\n");
    EXPECT_EQ(RunHandler(TestDisconnectDevice, hCal).output,
              "\nDisconnectDevice:\n\nERROR: Device not connected\n");

    HandlerRun connect = RunHandler(TestConnectDevice, hCal);
    EXPECT_EQ(connect.result, 0);
    EXPECT_EQ(connect.output, "\nConnectDevice:\n     Device connected.\n");

    HandlerRun again = RunHandler(TestConnectDevice, hCal);
    EXPECT_EQ(again.result, -1);
    EXPECT_EQ(again.output, "\nConnectDevice:\n\nERROR: Device already connected\n");
}

TEST_F(ConfigCommandsTest, NonNumericAnswersAreAskedAgainAndEndOfInputSendsNothing)
{
    HandlerRun set = RunHandler(TestSetBandConfig, hCal, "abc\n2300000\nx\n3500\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetBandConfig:\n"
              "    Center frequency (kHz)  ? \nNot a number. Please enter an unsigned decimal number.\n"
              "    Center frequency (kHz)  ? "
              "    Bandwidth (kHz)         ? \nNot a number. Please enter an unsigned decimal number.\n"
              "    Bandwidth (kHz)         ? "
              "\nSetBandConfig was SUCCESSFUL.\n");

    HandlerRun ended = RunHandler(TestSetBandConfig, hCal, "2400000\n");
    EXPECT_EQ(ended.result, -1);
    uint32_t center = 0, bandwidth = 0;
    ASSERT_EQ(Q7_GetBandConfig(hCal, &center, &bandwidth), nullptr);
    EXPECT_EQ(center, 2300000u);
    EXPECT_EQ(bandwidth, 3500u);
}

}  // namespace
