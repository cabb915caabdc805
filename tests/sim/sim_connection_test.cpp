#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Q7CalAPI.h"
#include "SimControl.h"
#include "console_capture.h"

namespace {

using SimConnectionTest = SimulatedDeviceTest;

TEST_F(SimConnectionTest, OnlyTheLocalInterfaceOpensAndOpeningAgainGivesTheSameHandle)
{
    char buffer[128];
    EXPECT_EQ(Q7_GetCalInterface(1, buffer, nullptr), nullptr);
    EXPECT_EQ(Q7_GetCalInterface(Q7_INTERFACE_LOCAL, buffer, nullptr), hCal);
}

TEST_F(SimConnectionTest, EveryOperationNeedsAValidHandleAndAConnectedDevice)
{
    EXPECT_EQ(Text(Q7_ConnectDevice(hCal)), "Device already connected");
    EXPECT_EQ(Text(Q7_DisconnectDevice(hCal)), "(success)");
    EXPECT_EQ(Text(Q7_DisconnectDevice(hCal)), "Device not connected");
    uint32_t value = 0;
    uint8_t byte = 0;
    int32_t option = 0;
    EXPECT_EQ(Text(Q7_GetBandConfig(hCal, &value, &value)), "Device not connected");
    EXPECT_EQ(Text(Q7_ForceReSync(hCal)), "Device not connected");
    EXPECT_EQ(Text(Q7_LoadDSD(hCal, 1)), "Device not connected");
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, &byte, 1, 0)), "Device not connected");
    EXPECT_EQ(Text(Q7_SetOptionByID(hCal, 0, 3)), "Device not connected");
    EXPECT_EQ(Text(Q7_GetMACAddress(nullptr, &byte)), "Invalid Cal API interface handle");
    EXPECT_EQ(Text(Q7_GetOptionByID(nullptr, 0, &option)), "Invalid Cal API interface handle");
    EXPECT_EQ(Text(Q7_ConnectDevice(nullptr)), "Invalid Cal API interface handle");
    EXPECT_EQ(Text(Q7_ConnectDevice(hCal)), "(success)");

    Q7_CloseCalInterface();
    EXPECT_EQ(Text(Q7_DisconnectDevice(hCal)), "Invalid Cal API interface handle") << "a stale handle";
}

TEST_F(SimConnectionTest, DeviceModeRangesAndTheAutomatedTestValues)
{
    EXPECT_EQ(Text(Q7_SetDeviceMode(hCal, 9, 0, 0, 0)), "DUT mode 9 is out of range (0-5)");
    EXPECT_EQ(Text(Q7_SetDeviceMode(hCal, 0, 3, 0, 0)), "Modulation type 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SetDeviceMode(hCal, 0, 0, -5001, 0)), "CW offset -5001 kHz is out of range (-5000 to 5000 kHz)");
    EXPECT_EQ(Text(Q7_SetDeviceMode(hCal, 0, 0, 0, 4)), "Loopback TX 4 is out of range (0-3)");

    ASSERT_EQ(Q7_SetDeviceMode(hCal, 4, 1, 1000, 0), nullptr);
    uint32_t dut = 0, modulation = 0, loopback = 9;
    int32_t cw = 0;
    ASSERT_EQ(Q7_GetDeviceMode(hCal, &dut, &modulation, &cw, &loopback), nullptr);
    EXPECT_EQ(dut, 4u);
    EXPECT_EQ(modulation, 1u);
    EXPECT_EQ(cw, 1000);
    EXPECT_EQ(loopback, 0u);
}

TEST_F(SimConnectionTest, BandConfigAcceptsTheBandsAndWidthsOfTheRadio)
{
    for (uint32_t center : {2300000u, 2400000u, 2496000u, 2690000u, 3300000u, 3800000u})
        EXPECT_EQ(Q7_SetBandConfig(hCal, center, 5000), nullptr) << center;
    for (uint32_t bandwidth : {3500u, 5000u, 7000u, 8750u, 10000u})
        EXPECT_EQ(Q7_SetBandConfig(hCal, 2500000, bandwidth), nullptr) << bandwidth;
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2450000, 5000)),
              "Center frequency 2450000 kHz is outside the supported bands "
              "(2300000-2400000, 2496000-2690000, 3300000-3800000 kHz)");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 6000)),
              "Bandwidth 6000 kHz is not supported (3500, 5000, 7000, 8750, 10000 kHz)");

    uint32_t center = 0, bandwidth = 0;
    ASSERT_EQ(Q7_GetBandConfig(hCal, &center, &bandwidth), nullptr);
    EXPECT_EQ(center, 2500000u) << "a refused band leaves the last one in place";
    EXPECT_EQ(bandwidth, 10000u);
}

TEST_F(SimConnectionTest, InjectedFaultsFailExactlyTheNextCalls)
{
    q7sim::control::FailNext("Q7_SetBandConfig", 2, "Synthesizer did not lock");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "Synthesizer did not lock");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "Synthesizer did not lock");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "(success)");

    q7sim::control::FailNext("Q7_GetCalInterface", 1, "");
    q7sim::control::Reset();
    char buffer[128];
    EXPECT_NE(Q7_GetCalInterface(Q7_INTERFACE_LOCAL, buffer, nullptr), nullptr) << "Reset clears faults";
}

TEST_F(SimConnectionTest, AFaultCanWaitForTheNthCallAndTheCallLogShowsEveryCallInOrder)
{
    q7sim::control::RecordCalls();
    q7sim::control::FailCall("Q7_SetBandConfig", 3, "Synthesizer did not lock");
    uint32_t center = 0, bandwidth = 0;
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "(success)");
    EXPECT_EQ(Text(Q7_GetBandConfig(hCal, &center, &bandwidth)), "(success)") << "other operations do not count";
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "(success)");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "Synthesizer did not lock");
    EXPECT_EQ(Text(Q7_SetBandConfig(hCal, 2500000, 5000)), "(success)");
    EXPECT_EQ(Text(Q7_GetBandConfig(nullptr, &center, &bandwidth)), "Invalid Cal API interface handle");

    const std::vector<std::string> expected = {"Q7_SetBandConfig", "Q7_GetBandConfig", "Q7_SetBandConfig",
                                               "Q7_SetBandConfig", "Q7_SetBandConfig"};
    EXPECT_EQ(q7sim::control::Calls(), expected) << "a call without a valid handle reaches no device";
    q7sim::control::Reset();
    EXPECT_TRUE(q7sim::control::Calls().empty());
    EXPECT_NE(Q7_GetCalInterface(Q7_INTERFACE_LOCAL, nullptr, nullptr), nullptr);
    EXPECT_TRUE(q7sim::control::Calls().empty()) << "the log is off after Reset";
}

}  // namespace
