#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "Device.h"
#include "SimControl.h"
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

    q7sim::Device &device() { return *q7sim::control::OpenDevice(); }
};

// The value as "%<width>.2f" prints it.
std::string Fixed(int width, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%*.2f", width, value);
    return text;
}

const char kTxGainPrompts[] = "0 = current active transmitter\t1 = TX1 2 = TX2 3 =TX1 & TX2: The center frequency in kHz: ";
const char kExtAttnPrompt[] = "0 = current active transmitter  1 = TX1 2 = TX2 3 =TX1 & TX2: ";
const char kFEPrompts[] = "Please specify the scan list index for the center frequency: "
                          "Amplitude of signal in dBm at RX1 antenna: Amplitude of signal in dBm at RX2 antenna: ";

TEST_F(LoopbackCommandsTest, NullHandlePrintsNothing)
{
    for (auto handler : {TestSetTRSwitch, TestCalibrateLCTrim, TestCalibrateTxGains, TestCalibrateTxPoutFreqCorr,
                         TestCalibrateFESteps, TestCalibrateTxExtAttnStep}) {
        HandlerRun run = RunHandler(handler, nullptr, "0 0 0\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(LoopbackCommandsTest, TRSwitchHeadingHasNoBlankLineAboveAndReportsItsOwnName)
{
    HandlerRun run = RunHandler(TestSetTRSwitch, hCal, "0\n1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output,
              "Set TR Switch:\n"
              "Please specify the state for  the Antenna 1 TR switch state: 0 = Tx1 off and Rx1 on  & 1 = Tx1 on and Rx1 off:"
              "Please specify the state for  the Antenna 2 TR switch state: 0 = Tx2 off and Rx2 on  & 1 = Tx2 on and Rx2 off:"
              "\nSetAntenaTRState was SUCCESSFUL.\n");
    EXPECT_EQ(device().cal.trSwitch().ant1, 0u);
    EXPECT_EQ(device().cal.trSwitch().ant2, 1u);
}

TEST_F(LoopbackCommandsTest, LCTrimListsEveryCalibratedFrequency)
{
    HandlerRun run = RunHandler(TestCalibrateLCTrim, hCal);
    EXPECT_EQ(run.result, 0);
    std::string expected = "Calibrate LC Trim:\n\n #Frequency=12\n";
    for (int i = 0; i < 12; i++)
        expected += "LCTrimArray[" + std::to_string(i) + "] = " + std::to_string(device().cal.lcTrim()[i]) + "\n";
    EXPECT_EQ(run.output, expected + "\nCalibrateLCTrim was SUCCESSFUL.\n");
}

TEST_F(LoopbackCommandsTest, LCTrimCountOfZeroPrintsNoListAndACountAbove12StopsAt12)
{
    device().cal.ForceLCTrimCount(0);
    EXPECT_EQ(RunHandler(TestCalibrateLCTrim, hCal).output,
              "Calibrate LC Trim:\n\n #Frequency=0\n\nCalibrateLCTrim was SUCCESSFUL.\n");

    device().cal.ForceLCTrimCount(40);
    HandlerRun run = RunHandler(TestCalibrateLCTrim, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_NE(run.output.find("\n #Frequency=40\nLCTrimArray[0] = "), std::string::npos);
    EXPECT_NE(run.output.find("LCTrimArray[11] = "), std::string::npos);
    EXPECT_EQ(run.output.find("LCTrimArray[12]"), std::string::npos);
}

TEST_F(LoopbackCommandsTest, TxGainTableHas37LinesWithTwoCharacterIndexes)
{
    HandlerRun run = RunHandler(TestCalibrateTxGains, hCal, "1\n2506000\n");
    EXPECT_EQ(run.result, 0);
    std::string expected = std::string("Calibrate TX Steps:\n") + kTxGainPrompts + "\n";
    for (int i = 0; i < 37; i++) {
        char index[8];
        std::snprintf(index, sizeof index, "%2d", i);
        expected += std::string("adTxGainArray[") + index + "] = " +
                    Fixed(5, device().cal.txGains(0)[static_cast<size_t>(i)]) + " dB\n";
    }
    EXPECT_EQ(run.output, expected + "\nCalibrateTxGains was SUCCESSFUL.\n");
    EXPECT_NE(run.output.find("adTxGainArray[ 0] = "), std::string::npos);
    EXPECT_NE(run.output.find("adTxGainArray[36] = "), std::string::npos);
}

TEST_F(LoopbackCommandsTest, PoutFrequencyCorrectionPrintsOnlyItsOutcome)
{
    HandlerRun run = RunHandler(TestCalibrateTxPoutFreqCorr, hCal, "5\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output,
              "Calibrate Tx Pout frequency correction:\n"
              "Please specify index of frequency in scan list [0:11]: "
              "\nCalibrateTxPoutFreqCorr was SUCCESSFUL.\n");

    HandlerRun refused = RunHandler(TestCalibrateTxPoutFreqCorr, hCal, "12\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.output,
              "Calibrate Tx Pout frequency correction:\n"
              "Please specify index of frequency in scan list [0:11]: "
              "\nERROR: Scan list index 12 is out of range (0-11)\n");
}

TEST_F(LoopbackCommandsTest, FEStepTableHasRx1LeftAndRx2Right)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutAgcFreeRun, 0, 1000, 0), nullptr);
    HandlerRun run = RunHandler(TestCalibrateFESteps, hCal, "5\n-40\n-40.0\n");
    EXPECT_EQ(run.result, 0);
    const q7sim::Calibration::FESteps &steps = device().cal.feSteps();
    auto row = [](const char *label, const std::array<double, 2> &pair) {
        return std::string(label) + Fixed(6, pair[0]) + " " + Fixed(6, pair[1]) + " dB\n";
    };
    EXPECT_EQ(run.output, std::string("Calibrate FE Steps:\n") + kFEPrompts + "\n" +
                              "                         Rx1    Rx2\n" +
                              row("PGA gain correction = ", steps.pgaGainCorrection) +
                              row("LNA mid gain step   = ", steps.lnaMidGainStep) +
                              row("LNA high gain step  = ", steps.lnaHighGainStep) +
                              row("LNA ext gain step   = ", steps.lnaExtGainStep) +
                              "\nCalibrateFESteps was SUCCESSFUL.\n");
}

TEST_F(LoopbackCommandsTest, ExtAttnStepTableHas20Lines)
{
    HandlerRun run = RunHandler(TestCalibrateTxExtAttnStep, hCal, "2\n");
    EXPECT_EQ(run.result, 0);
    std::string expected = std::string("Calibrate Tx external attenuator step:\n") + kExtAttnPrompt + "\n";
    for (int i = 0; i < 20; i++) {
        char index[8];
        std::snprintf(index, sizeof index, "%2d", i);
        expected += std::string("Tx Ext Attn Step[") + index + "] = " +
                    Fixed(5, device().cal.extAttnSteps(1)[static_cast<size_t>(i)]) + " dB\n";
    }
    EXPECT_EQ(run.output, expected + "\nCalibrateTxExtAttnStep was SUCCESSFUL.\n");
}

TEST_F(LoopbackCommandsTest, DeviceErrorsPrintNoTableLines)
{
    q7sim::control::FailNext("Q7_CalibrateTxGains", 1, "Loopback path not locked");
    HandlerRun gains = RunHandler(TestCalibrateTxGains, hCal, "0\n2500000\n");
    EXPECT_EQ(gains.result, -1);
    EXPECT_EQ(gains.output,
              std::string("Calibrate TX Steps:\n") + kTxGainPrompts + "\nERROR: Loopback path not locked\n");

    q7sim::control::FailNext("Q7_CalibrateLCTrim", 1, "VCO did not settle");
    EXPECT_EQ(RunHandler(TestCalibrateLCTrim, hCal).output, "Calibrate LC Trim:\n\nERROR: VCO did not settle\n");

    q7sim::control::FailNext("Q7_CalibrateTxExtAttnStep", 1, "Detector saturated");
    EXPECT_EQ(RunHandler(TestCalibrateTxExtAttnStep, hCal, "0\n").output,
              std::string("Calibrate Tx external attenuator step:\n") + kExtAttnPrompt +
                  "\nERROR: Detector saturated\n");

    // In Loopback mode the FE step calibration is refused by the device itself.
    HandlerRun fe = RunHandler(TestCalibrateFESteps, hCal, "5\n-40\n-40\n");
    EXPECT_EQ(fe.result, -1);
    EXPECT_EQ(fe.output, std::string("Calibrate FE Steps:\n") + kFEPrompts +
                             "\nERROR: FE step calibration needs AGC free-run mode (DUT mode 4); "
                             "the device is in Loopback mode (DUT mode 5)\n");
}

TEST_F(LoopbackCommandsTest, EndOfInputBeforeTheLastAnswerCalibratesNothing)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutAgcFreeRun, 0, 1000, 0), nullptr);
    HandlerRun run = RunHandler(TestCalibrateFESteps, hCal, "5\n-40\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output.find("Rx1    Rx2"), std::string::npos);
    EXPECT_EQ(device().cal.feSteps().lnaMidGainStep[0], 0.0);

    HandlerRun tr = RunHandler(TestSetTRSwitch, hCal, "1\n");
    EXPECT_EQ(tr.result, -1);
    EXPECT_EQ(device().cal.trSwitch().ant1, 0u);
}

}  // namespace
