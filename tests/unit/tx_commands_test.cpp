#include <gtest/gtest.h>

#include <string>

#include "commands.h"
#include "console_capture.h"

namespace {

class TxCommandsTest : public SimulatedDeviceTest {
protected:
    q7sim::Transmitters &Tx() { return device().tx; }
};

TEST_F(TxCommandsTest, ValuesTheDeviceNeverTakesAreShownWithTheirNumbers)
{
    Tx().ForceAttn(0, q7sim::TxAttn{1.5, 1, 2, 3, 4, 2});
    EXPECT_TRUE(Contains(RunHandler(TestGetTxAttn, hCal, "1\n").output,
                         "     External attenuator                 = Enabled (2)\n"));
    Tx().ForceDiversitySwitch(5);
    EXPECT_TRUE(Contains(RunHandler(TestGetTxDiversitySwitch, hCal).output, "= 5 (Antenna 2)\n"));
    Tx().ForceActiveTx(4);
    EXPECT_EQ(RunHandler(TestGetActiveTX, hCal).output,
              "\nGetActiveTx:\n Unknown Value(4)\nGetActiveTX was SUCCESSFUL.\n");
}

TEST_F(TxCommandsTest, TypedValuesReachTheDeviceUnroundedAndForTheirTransmitter)
{
    EXPECT_EQ(RunHandler(TestSetTxBackoff, hCal, "1.23456789\n").result, 0);
    EXPECT_EQ(Tx().backoff(), 1.23456789);
    EXPECT_EQ(RunHandler(TestSetTxDecoderMode, hCal, "2\n1\n").result, 0);
    EXPECT_EQ(Tx().decoderMode(0), 0u);
    EXPECT_EQ(Tx().decoderMode(1), 1u);
    EXPECT_EQ(RunHandler(TestSetLCLControllerState, hCal, "0\n").result, 0);
    EXPECT_EQ(Tx().lflControllerState(), 0);
}

TEST_F(TxCommandsTest, DeviceErrorsEndEachCommandWithoutResultLines)
{
    ExpectInjectedFaultsReported(hCal, {
        {TestGetTxOutputPower, "Q7_GetTxOutputPower", "", "\nGetTxOutputPower:\n"},
        {TestGetTxDiversitySwitch, "Q7_GetTxDiversitySwitch", "", "\nGetTxDiversitySwitch:\n"},
        {TestGetActiveTX, "Q7_GetActiveTX", "", "\nGetActiveTx:\n"},
        {TestGetTxBackoff, "Q7_GetTxBackoff", "", "\nGetTxBackoff:\n"},
        {TestGetTxPhiWord, "Q7_GetTxPhiWord", "", "\nGetTxPhiWord:\n"},
        {TestGetFeedbackCalAttn, "Q7_GetFeedbackCalAttn", "", "\nGetFeedbackCalAttn:\n"},
        {TestGetRFAsymmetry, "Q7_GetRFAsymmetry", "", "\nGetRFAsymmetry:\n"},
        {TestSetLCLControllerState, "Q7_SetLFLControllerState", "1\n",
            "\nSetLCLControllerState:\nplease enter: 0=Freeze control loop1=Enable control loop"},
        {TestSetActiveTX, "Q7_SetActiveTX", "1\n",
            "\nSetActiveTx:\nplease enter: 0=neither enabled 1=TX1 enable 2=TX2 enable 3=TX1 & TX2 enable \n"},
    });
}

TEST_F(TxCommandsTest, EndOfInputSendsNothing)
{
    HandlerRun ended = RunHandler(TestSetTxAttn, hCal, "1\n-2.0\n9\n");
    EXPECT_EQ(ended.result, -1);
    q7sim::TxAttn attn;
    ASSERT_TRUE(Tx().GetAttn(1, attn).ok());
    EXPECT_EQ(attn.basebandDb, 3.0);

    HandlerRun notANumber = RunHandler(TestSetTxOutputPower, hCal, "high\n");
    EXPECT_EQ(notANumber.result, -1);
    EXPECT_EQ(Tx().outputPowerDbm(), 0.0);
}

}  // namespace
