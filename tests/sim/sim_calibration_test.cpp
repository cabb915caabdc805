#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

#include "Device.h"
#include "Q7CalAPI.h"
#include "console_capture.h"

namespace {

class SimCalibrationTest : public SimulatedDeviceTest {
protected:
    void SetMode(uint32_t dutMode) { ASSERT_EQ(Q7_SetDeviceMode(hCal, dutMode, 0, 1000, 0), nullptr); }

    ApiStatus FESteps(uint32_t index, double rx1, double rx2)
    {
        return Q7_CalibrateFESteps(hCal, index, rx1, rx2, pga.data(), mid.data(), high.data(), ext.data());
    }

    std::array<int32_t, 12> trim{};
    uint32_t count = 0;
    std::array<double, 37> gains{};
    std::array<double, 20> steps{};
    std::array<double, 2> pga{}, mid{}, high{}, ext{};
};

TEST_F(SimCalibrationTest, EachCalibrationSaysWhichModeItNeeds)
{
    const std::string inNormal = "the device is in Normal mode (DUT mode 0)";
    EXPECT_EQ(Text(Q7_CalibrateLCTrim(hCal, trim.data(), &count)),
              "LC trim calibration needs Loopback mode (DUT mode 5); " + inNormal);
    EXPECT_EQ(Text(Q7_CalibrateTxGains(hCal, 1, 2500000, gains.data())),
              "Tx gain calibration needs Loopback mode (DUT mode 5); " + inNormal);
    EXPECT_EQ(Text(Q7_CalibrateTxPoutFreqCorr(hCal, 5)),
              "Tx Pout frequency correction needs Loopback mode (DUT mode 5); " + inNormal);
    EXPECT_EQ(Text(Q7_CalibrateTxExtAttnStep(hCal, 0, steps.data())),
              "Tx external attenuator step calibration needs Loopback mode (DUT mode 5); " + inNormal);
    EXPECT_EQ(Text(FESteps(5, -40.0, -40.0)), "FE step calibration needs AGC free-run mode (DUT mode 4); " + inNormal);

    SetMode(q7sim::kDutLoopback);
    EXPECT_EQ(Text(FESteps(5, -40.0, -40.0)),
              "FE step calibration needs AGC free-run mode (DUT mode 4); the device is in Loopback mode (DUT mode 5)");
    EXPECT_EQ(Text(Q7_CalibrateLCTrim(hCal, trim.data(), &count)), "(success)");
}

TEST_F(SimCalibrationTest, TheLoopbackGroupSequenceSucceeds)
{
    SetMode(q7sim::kDutLoopback);
    EXPECT_EQ(Q7_SetTRSwitch(hCal, 0, 0), nullptr);
    EXPECT_EQ(Q7_CalibrateLCTrim(hCal, trim.data(), &count), nullptr);
    EXPECT_EQ(Q7_CalibrateTxPoutFreqCorr(hCal, 5), nullptr);
    SetMode(q7sim::kDutAgcFreeRun);
    EXPECT_EQ(FESteps(5, -40.0, -40.0), nullptr);
    SetMode(q7sim::kDutLoopback);
    EXPECT_EQ(Q7_CalibrateTxExtAttnStep(hCal, 0, steps.data()), nullptr);
    EXPECT_TRUE(device().cal.poutCorrection(0, 5).has_value()) << "selector 0 is the active TX1";
    EXPECT_FALSE(device().cal.poutCorrection(1, 5).has_value());
}

TEST_F(SimCalibrationTest, LCTrimCoversTheScanListFallingWithFrequencyAndRepeats)
{
    SetMode(q7sim::kDutLoopback);
    ASSERT_EQ(Q7_CalibrateLCTrim(hCal, trim.data(), &count), nullptr);
    EXPECT_EQ(count, 12u);
    for (size_t i = 1; i < trim.size(); i++)
        EXPECT_LT(trim[i], trim[i - 1]) << i;
    std::array<int32_t, 12> again{};
    ASSERT_EQ(Q7_CalibrateLCTrim(hCal, again.data(), &count), nullptr);
    EXPECT_EQ(again, trim);
    EXPECT_EQ(device().cal.lcTrim(), trim);
}

TEST_F(SimCalibrationTest, TxGainTablesFallAboutOneDbPerStepAndAreKeptPerTransmitter)
{
    SetMode(q7sim::kDutLoopback);
    ASSERT_EQ(Q7_CalibrateTxGains(hCal, 2, 3500000, gains.data()), nullptr);
    for (size_t i = 1; i < gains.size(); i++) {
        EXPECT_GT(gains[i - 1] - gains[i], 0.9) << i;
        EXPECT_LT(gains[i - 1] - gains[i], 1.1) << i;
    }
    EXPECT_EQ(device().cal.txGains(1), gains);
    EXPECT_EQ(device().cal.txGainsCenterKHz(1), 3500000u);
    EXPECT_EQ(device().cal.txGainsCenterKHz(0), 0u) << "TX1 was not calibrated";

    std::array<double, 37> both{};
    ASSERT_EQ(Q7_CalibrateTxGains(hCal, 3, 2500000, both.data()), nullptr);
    EXPECT_EQ(both, device().cal.txGains(0)) << "selector 3 returns the TX1 table";
    EXPECT_NE(device().cal.txGains(0), device().cal.txGains(1));
    EXPECT_GT(device().cal.txGains(0)[0], gains[0]) << "the top gain is higher at a lower frequency";
}

TEST_F(SimCalibrationTest, SelectorsScanIndexesAndFrequenciesAreRangeChecked)
{
    SetMode(q7sim::kDutLoopback);
    EXPECT_EQ(Text(Q7_CalibrateTxGains(hCal, 4, 2500000, gains.data())), "Tx selector 4 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_CalibrateTxGains(hCal, 1, 2000000, gains.data())),
              "Center frequency 2000000 kHz is outside the transmitter's range (2300000-3800000 kHz)");
    EXPECT_EQ(Text(Q7_CalibrateTxExtAttnStep(hCal, 7, steps.data())), "Tx selector 7 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_CalibrateTxPoutFreqCorr(hCal, 12)), "Scan list index 12 is out of range (0-11)");
    EXPECT_EQ(Text(Q7_CalibrateTxPoutFreqCorr(hCal, 11)), "(success)");
    SetMode(q7sim::kDutAgcFreeRun);
    EXPECT_EQ(Text(FESteps(12, -40.0, -40.0)), "Scan list index 12 is out of range (0-11)");
    EXPECT_EQ(Text(FESteps(0, -40.0, -95.0)), "Rx2 signal amplitude -95.0 dBm is out of range (-80 to -20 dBm)");
    EXPECT_EQ(Text(FESteps(0, std::nan(""), -40.0)), "Rx1 signal amplitude nan dBm is out of range (-80 to -20 dBm)");
}

TEST_F(SimCalibrationTest, FEStepsAreNearNominalWithSmallPathDifferencesAndNeedTheReceiversOn)
{
    SetMode(q7sim::kDutAgcFreeRun);
    ASSERT_EQ(FESteps(5, -40.0, -40.0), nullptr);
    for (size_t path = 0; path < 2; path++) {
        EXPECT_NEAR(pga[path], 0.0, 0.5);
        EXPECT_NEAR(mid[path], 14.0, 0.5);
        EXPECT_NEAR(high[path], 12.0, 0.5);
        EXPECT_NEAR(ext[path], 15.0, 0.6);
    }
    EXPECT_NE(mid[0], mid[1]);
    EXPECT_NEAR(mid[0], mid[1], 0.5);
    EXPECT_EQ(device().cal.feSteps().lnaExtGainStep, ext);

    std::array<double, 2> weakHigh = high;
    ASSERT_EQ(FESteps(5, -25.0, -40.0), nullptr);
    EXPECT_LT(high[0], weakHigh[0]) << "a strong signal compresses the high-gain step";
    EXPECT_EQ(high[1], weakHigh[1]);

    ASSERT_EQ(Q7_SetTRSwitch(hCal, 0, 1), nullptr);
    EXPECT_EQ(Text(FESteps(5, -40.0, -40.0)), "Rx2 is switched off: its antenna TR switch is at 1 (Tx on, Rx off)");
    EXPECT_EQ(Text(Q7_SetTRSwitch(hCal, 0, 2)), "Antenna 2 TR switch state 2 is out of range (0-1)");
    EXPECT_EQ(device().cal.trSwitch().ant2, 1u) << "a refused state leaves the switch as it was";
}

TEST_F(SimCalibrationTest, ExtAttnStepsRiseAboutTwoDbFromZero)
{
    SetMode(q7sim::kDutLoopback);
    ASSERT_EQ(Q7_CalibrateTxExtAttnStep(hCal, 1, steps.data()), nullptr);
    EXPECT_EQ(steps[0], 0.0);
    for (size_t i = 1; i < steps.size(); i++)
        EXPECT_NEAR(steps[i] - steps[i - 1], 2.0, 0.2) << i;
    EXPECT_EQ(device().cal.extAttnSteps(0), steps);
}

}  // namespace
