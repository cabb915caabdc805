#include <gtest/gtest.h>

#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

bool Contains(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

using TxCommandsTest = SimulatedDeviceTest;

q7sim::Transmitters &Tx() { return q7sim::control::OpenDevice()->tx; }

const char kSetTxAttnPrompts[] =
    "\nSetTxAttn:\n"
    "     0 = current active transmitter  1 = TX1 2 = TX2 3=TX1 & Tx2 both:\t?"
    "     the baseband attenuator setting, in dB.(0.0 - 11.875)\t\t\t\t?"
    "     the Mixer Thermometer index.(0-15)\t\t\t\t\t\t\t\t\t?"
    "     the Mixer Binary index (0-31)\t\t\t\t\t\t\t\t\t\t?"
    "     PA Driver Thermometer index.(0-16)\t\t\t\t\t\t\t\t\t?"
    "     PA Driver Attenuator index. (0-5)\t\t\t\t\t\t\t\t\t?"
    "     External attenuation:(0 = Disabled\t1 = Enabled\t\t\t\t\t\t?";

const char kTxSelectorPrompt[] = "0 = current active transmitter  1 = TX1 2 = TX2 3 =TX1 & TX2: ";

TEST_F(TxCommandsTest, NullHandlePrintsNothing)
{
    for (auto handler :
         {TestGetTxAttn, TestSetTxAttn, TestGetTxOutputPower, TestSetTxOutputPower, TestGetTxDiversitySwitch,
          TestSetTxDiversitySwitch, TestGetActiveTX, TestSetActiveTX, TestGetTxBackoff, TestSetTxBackoff,
          TestGetTxGCWord, TestSetTxGCWord, TestGetTxPhiWord, TestSetTxPhiWord, TestGetFeedbackCalAttn,
          TestSetFeedbackCalAttn, TestSetLCLControllerState, TestGetRFAsymmetry, TestSetRFAsymmetry,
          TestSetTxDecoderMode}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1 1 1 1 1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(TxCommandsTest, AttenuatorSetsOfTheAutomatedTestReadBackExactly)
{
    HandlerRun set = RunHandler(TestSetTxAttn, hCal, "1\n-2.0\n9\n2\n1\n1\n0\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output, std::string(kSetTxAttnPrompts) + "\nSetTxAttn was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestSetTxAttn, hCal, "2\n2.0\n0\n20\n10\n4\n1\n").result, 0);

    HandlerRun tx1 = RunHandler(TestGetTxAttn, hCal, "1\n");
    EXPECT_EQ(tx1.result, 0);
    EXPECT_EQ(tx1.output,
              "0 = current active transmitter  1 = TX1 2 = TX2: "
              "\nGetTxAttn:\n"
              "     baseband attenuator \t\t\t\t= -2.00 dB\n"
              "     Mixer Thermometer index\t        = 9\n"
              "     Mixer Binary index\t\t\t        = 2\n"
              "     PA Driver Thermometer index          = 1\n"
              "     PA driver attenuation index        = 1\n"
              "     External attenuator                 = Disabled (0)\n"
              "\nGetTxAttn was SUCCESSFUL.\n");

    std::string tx2 = RunHandler(TestGetTxAttn, hCal, "2\n").output;
    EXPECT_TRUE(Contains(tx2, "     baseband attenuator \t\t\t\t= 2.00 dB\n"));
    EXPECT_TRUE(Contains(tx2, "     Mixer Binary index\t\t\t        = 20\n"));
    EXPECT_TRUE(Contains(tx2, "     External attenuator                 = Enabled (1)\n"));
}

TEST_F(TxCommandsTest, GetTxAttnPassesSelectorThreeToTheDevice)
{
    HandlerRun run = RunHandler(TestGetTxAttn, hCal, "3\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "0 = current active transmitter  1 = TX1 2 = TX2: "
              "\nGetTxAttn:\n"
              "\nERROR: Tx selector 3 names both transmitters; a read takes one (0-2)\n");
}

TEST_F(TxCommandsTest, AnyNonzeroExternalAttenuatorIsEnabled)
{
    Tx().ForceAttn(0, q7sim::TxAttn{1.5, 1, 2, 3, 4, 2});
    EXPECT_TRUE(Contains(RunHandler(TestGetTxAttn, hCal, "1\n").output,
                         "     External attenuator                 = Enabled (2)\n"));
}

TEST_F(TxCommandsTest, OutOfRangeAttenuatorValuesReachTheDevice)
{
    HandlerRun run = RunHandler(TestSetTxAttn, hCal, "1\n0.5\n20\n2\n1\n1\n0\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output, std::string(kSetTxAttnPrompts) +
                              "\nERROR: Mixer thermometer index 20 is out of range (0-15)\n");
}

TEST_F(TxCommandsTest, OutputPowerLevelsOfTheAutomatedTestReadBack)
{
    for (const char *level : {"20", "-20", "10"}) {
        HandlerRun set = RunHandler(TestSetTxOutputPower, hCal, std::string(level) + "\n");
        EXPECT_EQ(set.output, "\nSetTxOutputPower:\n     Tx output power (double, -40 to +35 dBm) ? "
                              "\nSetTxOutputPower was SUCCESSFUL.\n");
        EXPECT_EQ(RunHandler(TestGetTxOutputPower, hCal).output,
                  "\nGetTxOutputPower:\n    Tx output power = " + std::string(level) +
                      " dBm\n\nGetTxOutputPower was SUCCESSFUL.\n");
    }
    EXPECT_TRUE(Contains(RunHandler(TestSetTxOutputPower, hCal, "36\n").output,
                         "\nERROR: Tx output power 36 dBm is out of range (-40 to 35 dBm)\n"));
}

TEST_F(TxCommandsTest, DiversitySwitchShowsAntennaTwoForEveryNonzeroValue)
{
    HandlerRun set = RunHandler(TestSetTxDiversitySwitch, hCal, "1\n");
    EXPECT_EQ(set.output, "\nSetTxDiversitySwitch:\n     Tx diversity switch (0=Ant 1; 1=Ant 2) ? "
                          "\nSetTxDiversitySwitch was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetTxDiversitySwitch, hCal).output,
              "\nGetTxDiversitySwitch:\n    Tx diversity switch = 1 (Antenna 2)\n"
              "\nGetTxDiversitySwitch was SUCCESSFUL.\n");
    RunHandler(TestSetTxDiversitySwitch, hCal, "0\n");
    EXPECT_TRUE(Contains(RunHandler(TestGetTxDiversitySwitch, hCal).output, "= 0 (Antenna 1)\n"));

    Tx().ForceDiversitySwitch(5);
    EXPECT_TRUE(Contains(RunHandler(TestGetTxDiversitySwitch, hCal).output, "= 5 (Antenna 2)\n"));
}

TEST_F(TxCommandsTest, ActiveTransmittersPrintOnTheSuccessLine)
{
    HandlerRun set = RunHandler(TestSetActiveTX, hCal, "3\n");
    EXPECT_EQ(set.output,
              "\nSetActiveTx:\n"
              "please enter: 0=neither enabled 1=TX1 enable 2=TX2 enable 3=TX1 & TX2 enable \n"
              "\nSetActiveTX was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetActiveTX, hCal).output,
              "\nGetActiveTx:\n TX1 & TX2 enabled(3)\nGetActiveTX was SUCCESSFUL.\n");

    Tx().ForceActiveTx(4);
    EXPECT_EQ(RunHandler(TestGetActiveTX, hCal).output,
              "\nGetActiveTx:\n Unknown Value(4)\nGetActiveTX was SUCCESSFUL.\n");
}

TEST_F(TxCommandsTest, BackoffKeepsFullPrecisionAndPrintsSixDigits)
{
    HandlerRun set = RunHandler(TestSetTxBackoff, hCal, "1.23456789\n");
    EXPECT_EQ(set.output, "\nSetTXBackoff:\nplease enter TXBackoff: \nSetTxBackoff was SUCCESSFUL.\n");
    EXPECT_EQ(Tx().backoff(), 1.23456789);
    EXPECT_EQ(RunHandler(TestGetTxBackoff, hCal).output,
              "\nGetTxBackoff:\n    TxBackoff    = 1.23457\n\nGetTxBackoff was SUCCESSFUL.\n");
}

TEST_F(TxCommandsTest, GcWordIsADoublePerTransmitter)
{
    HandlerRun set = RunHandler(TestSetTxGCWord, hCal, "2\n1234.5\n");
    EXPECT_EQ(set.output, "\nSetTxGCWord:\n" + std::string(kTxSelectorPrompt) +
                              "please enter TxGCWord: \nSetTxGCWord was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetTxGCWord, hCal, "2\n").output,
              "\nGetTxGCWord:\n" + std::string(kTxSelectorPrompt) +
                  "    TxGCWord    = 1234.5\n\nGetTxGCWord was SUCCESSFUL.\n");
    EXPECT_TRUE(Contains(RunHandler(TestGetTxGCWord, hCal, "1\n").output, "    TxGCWord    = 8192\n"));
}

TEST_F(TxCommandsTest, PhiWordAndFeedbackAttenuationPrintBareNumbers)
{
    EXPECT_EQ(RunHandler(TestSetTxPhiWord, hCal, "700\n").output,
              "\nSetTxPhiWord:\nplease enter level of \" PhiWord\" : \nSetTxPhiWord was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetTxPhiWord, hCal).output, "\nGetTxPhiWord:\n 700\nGetTxPhiWord was SUCCESSFUL.\n");

    EXPECT_EQ(RunHandler(TestSetFeedbackCalAttn, hCal, "12\n").output,
              "\nSetFeedbackCalAttn:\nplease enter FeedbackCalAttn: \nSetFeedbackCalAttn was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetFeedbackCalAttn, hCal).output,
              "\nGetFeedbackCalAttn:\n 12\nGetFeedbackCalAttn was SUCCESSFUL.\n");
}

TEST_F(TxCommandsTest, LclControllerPromptRunsTogetherAndCallsTheLflOperation)
{
    HandlerRun set = RunHandler(TestSetLCLControllerState, hCal, "0\n");
    EXPECT_EQ(set.output, "\nSetLCLControllerState:\nplease enter: 0=Freeze control loop1=Enable control loop"
                          "\nSetLCLControllerState was SUCCESSFUL.\n");
    EXPECT_EQ(Tx().lflControllerState(), 0);

    q7sim::control::FailNext("Q7_SetLFLControllerState", 1, "Loop busy");
    EXPECT_TRUE(Contains(RunHandler(TestSetLCLControllerState, hCal, "1\n").output, "\nERROR: Loop busy\n"));
    EXPECT_TRUE(Contains(RunHandler(TestSetLCLControllerState, hCal, "2\n").output,
                         "\nERROR: LFL controller state 2 is out of range (0-1)\n"));
}

TEST_F(TxCommandsTest, RfAsymmetryIsSigned)
{
    EXPECT_EQ(RunHandler(TestSetRFAsymmetry, hCal, "-31\n").output,
              "\nSetRFAsymmetry:\n RFAsymmetry (-31 to 32)?\nSetRFAsymmetry was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetRFAsymmetry, hCal).output,
              "\nGetRFAsymmetry:\nRFAsymmetry  = -31 KHz\n\nGetRFAsymmetry was SUCCESSFUL.\n");
    EXPECT_TRUE(Contains(RunHandler(TestSetRFAsymmetry, hCal, "40\n").output,
                         "\nERROR: RF asymmetry 40 kHz is out of range (-31 to 32 kHz)\n"));
}

TEST_F(TxCommandsTest, DecoderModePromptCarriesTheDashBytes)
{
    HandlerRun set = RunHandler(TestSetTxDecoderMode, hCal, "2\n1\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output, "\nSetTxDecoderMode:\n" + std::string(kTxSelectorPrompt) +
                              " DecoderMode(0 \x96 Enable Tx Decoder 1 \x96 Override Tx Decoder.? "
                              "\nSetTxDecoderMode was SUCCESSFUL.\n");
    EXPECT_EQ(Tx().decoderMode(0), 0u);
    EXPECT_EQ(Tx().decoderMode(1), 1u);
}

TEST_F(TxCommandsTest, DeviceErrorsEndEachCommandWithoutResultLines)
{
    struct Case {
        int (*handler)(CalInterfaceHandle);
        const char *operation;
        const char *input;
        const char *heading;
    };
    const Case cases[] = {
        {TestGetTxOutputPower, "Q7_GetTxOutputPower", "", "\nGetTxOutputPower:\n"},
        {TestGetTxDiversitySwitch, "Q7_GetTxDiversitySwitch", "", "\nGetTxDiversitySwitch:\n"},
        {TestGetActiveTX, "Q7_GetActiveTX", "", "\nGetActiveTx:\n"},
        {TestGetTxBackoff, "Q7_GetTxBackoff", "", "\nGetTxBackoff:\n"},
        {TestGetTxPhiWord, "Q7_GetTxPhiWord", "", "\nGetTxPhiWord:\n"},
        {TestGetFeedbackCalAttn, "Q7_GetFeedbackCalAttn", "", "\nGetFeedbackCalAttn:\n"},
        {TestGetRFAsymmetry, "Q7_GetRFAsymmetry", "", "\nGetRFAsymmetry:\n"},
        {TestSetActiveTX, "Q7_SetActiveTX", "1\n",
         "\nSetActiveTx:\nplease enter: 0=neither enabled 1=TX1 enable 2=TX2 enable 3=TX1 & TX2 enable \n"},
    };
    for (const Case &c : cases) {
        q7sim::control::FailNext(c.operation, 1, "PA not ready");
        HandlerRun run = RunHandler(c.handler, hCal, c.input);
        EXPECT_EQ(run.result, -1) << c.operation;
        EXPECT_EQ(run.output, std::string(c.heading) + "\nERROR: PA not ready\n") << c.operation;
    }
}

TEST_F(TxCommandsTest, EndOfInputSendsNothing)
{
    HandlerRun ended = RunHandler(TestSetTxAttn, hCal, "1\n-2.0\n9\n");
    EXPECT_EQ(ended.result, -1);
    EXPECT_TRUE(Contains(RunHandler(TestGetTxAttn, hCal, "1\n").output, "= 3.00 dB\n"));

    HandlerRun notANumber = RunHandler(TestSetTxOutputPower, hCal, "high\n");
    EXPECT_EQ(notANumber.result, -1);
    EXPECT_EQ(Tx().outputPowerDbm(), 0.0);
}

}  // namespace
