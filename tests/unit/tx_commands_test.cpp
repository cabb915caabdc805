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

// Every command that asks for a transmitter passes the one typed: the device's
// own range check names it.
TEST_F(TxCommandsTest, EveryTransmitterSelectorTypedReachesTheDevice)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutLoopback, 0, 1000, 0), nullptr);
    const struct {
        int (*handler)(CalInterfaceHandle);
        const char *answers;  // the selector first
    } commands[] = {
        {TestGetTxAttn, "7\n"},          {TestSetTxAttn, "7\n0\n0\n0\n0\n0\n0\n"}, {TestGetTxGCWord, "7\n"},
        {TestSetTxGCWord, "7\n1.5\n"}, {TestSetTxDecoderMode, "7\n1\n"},            {TestCalibrateTxGains, "7\n2500000\n"},
        {TestCalibrateTxExtAttnStep, "7\n"},
    };
    for (const auto &command : commands) {
        HandlerRun run = RunHandler(command.handler, hCal, command.answers);
        EXPECT_TRUE(EndsWith(run.output, "\nERROR: Tx selector 7 is out of range (0-3)\n")) << run.output;
    }
}

}  // namespace
