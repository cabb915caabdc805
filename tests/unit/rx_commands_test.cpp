#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

bool Contains(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

using RxCommandsTest = SimulatedDeviceTest;

q7sim::Receiver &Rx() { return q7sim::control::OpenDevice()->rx; }

bool Matches(const std::string &text, const std::string &pattern)
{
    return std::regex_match(text, std::regex(pattern));
}

TEST_F(RxCommandsTest, NullHandlePrintsNothing)
{
    for (auto handler : {TestGetRxAntConfig, TestSetRxAntConfig, TestIsSync, TestForceReSync, TestSetAGCMode,
                         TestGetRxGainState, TestSetRxGainState, TestGetRSSIReport, TestGetCINR,
                         TestGetPerAntThermalNoise, TestResetFrameErrorStatistics, TestGetFrameErrorStatistics}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1 1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(RxCommandsTest, AntennaConfigurationRoundTripsByName)
{
    HandlerRun set = RunHandler(TestSetRxAntConfig, hCal, "1\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetRxAntConfig:\n"
              "Rx ant config: 0 = Rx1 only; 1 = Rx2 only; 2 = Rx1+Rx2\n"
              "    Rx antenna configuration ? "
              "\nSetRxAntConfig was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetRxAntConfig, hCal).output,
              "\nGetRxAntConfig:\n    RxAntConfig = Rx2 only\n\nGetRxAntConfig was SUCCESSFUL.\n");

    RunHandler(TestSetRxAntConfig, hCal, "0\n");
    EXPECT_TRUE(Contains(RunHandler(TestGetRxAntConfig, hCal).output, "    RxAntConfig = Rx1 only\n"));
    RunHandler(TestSetRxAntConfig, hCal, "2\n");
    EXPECT_TRUE(Contains(RunHandler(TestGetRxAntConfig, hCal).output, "    RxAntConfig = Rx1 + Rx2\n"));

    HandlerRun refused = RunHandler(TestSetRxAntConfig, hCal, "3\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_TRUE(Contains(refused.output, "? \nERROR: Rx antenna configuration 3 is out of range (0-2)\n"));

    Rx().ForceAntConfig(3);
    EXPECT_TRUE(Contains(RunHandler(TestGetRxAntConfig, hCal).output, "    RxAntConfig = Unknown value\n"));
}

TEST_F(RxCommandsTest, SyncIsReportedAndForcedReSyncDropsIt)
{
    HandlerRun sync = RunHandler(TestIsSync, hCal);
    EXPECT_EQ(sync.result, 0);
    EXPECT_TRUE(Matches(sync.output, "\nIsSync:\n"
                                     "    Frequency offset \\(PPM\\) = 0\\.[0-9]{3}\n"
                                     "    Sync frequency \\(kHz\\)   = 2500000\n"
                                     "    Sync status            = Sync achieved\n"
                                     "\nIsSync was SUCCESSFUL.\n"))
        << sync.output;

    HandlerRun force = RunHandler(TestForceReSync, hCal);
    EXPECT_EQ(force.result, 0);
    EXPECT_EQ(force.output, "\nForce Re-sync:\n\nForceReSync was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestIsSync, hCal).output,
              "\nIsSync:\n"
              "    Frequency offset (PPM) = 0.000\n"
              "    Sync frequency (kHz)   = 0\n"
              "    Sync status            = Sync not achieved\n"
              "\nIsSync was SUCCESSFUL.\n");
}

TEST_F(RxCommandsTest, AgcModeAsksForModeAndBackoff)
{
    HandlerRun set = RunHandler(TestSetAGCMode, hCal, "1\n12\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetAGCMode:\n"
              "AGC mode:    0=Normal, 1=Back off AGC, 2=Freeze AGC\n"
              "AGC backoff: 0 to 64 dB, in 1 dB steps (enter as decimal integer)\n"
              "    AGC mode                ?     AGC backoff in dB (dec) ? "
              "\nSetAGCMode was SUCCESSFUL.\n");
    EXPECT_EQ(Rx().agcMode(), 1u);
    EXPECT_EQ(Rx().agcBackoffDb(), 12u);

    HandlerRun refused = RunHandler(TestSetAGCMode, hCal, "0\n65\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_TRUE(Contains(refused.output, "\nERROR: AGC backoff 65 dB is out of range (0-64 dB)\n"));
}

TEST_F(RxCommandsTest, GainStateRoundTripsWithOddPgaIndex)
{
    HandlerRun set = RunHandler(TestSetRxGainState, hCal, "1\n1\n0\n19\n");
    EXPECT_EQ(set.result, 0);
    EXPECT_EQ(set.output,
              "\nSetRxGainState:\n"
              "    Rx path (0=Rx1; 1=Rx2; 2=Rx1 & Rx2)?     Enable external LNA (1=yes; 0=no)  ? "
              "  For Front End gain state, please enter: \n"
              "                                  0=Low  (max gain - 26 dB)\n"
              "                                  1=middle  (max gain - 12 dB)\n"
              "                                  2=high    (max gain)\n"
              "    LNA gain                           ? "
              "  Please enter the PGA gain as an even integer (dec)\n"
              "    PGA gain index (0 to 31)           ? "
              "\nSetRxGainState was SUCCESSFUL.\n");

    HandlerRun get = RunHandler(TestGetRxGainState, hCal, "1\n");
    EXPECT_EQ(get.result, 0);
    EXPECT_EQ(get.output,
              "\nGetRxGainState:\n"
              "    Rx path (0=Rx1; 1=Rx2) ? "
              "    External LNA   = Enabled (1)\n"
              "    Front End gain state   = Low    (Max gain - 26 dB) (0)\n"
              "    PGA gain index = 19\n"
              "    Total gain     = 31.5\n"
              "\nGetRxGainState was SUCCESSFUL.\n");

    RunHandler(TestSetRxGainState, hCal, "0\n0\n1\n3\n");
    EXPECT_TRUE(Contains(RunHandler(TestGetRxGainState, hCal, "0\n").output,
                         "    External LNA   = Disabled (0)\n"
                         "    Front End gain state   = Medium (Max gain - 12 dB) (1)\n"
                         "    PGA gain index = 3\n"));
}

TEST_F(RxCommandsTest, EveryFrontEndStateAboveMediumIsHigh)
{
    for (uint32_t state : {2u, 7u, 0xFFFFFFFFu}) {
        Rx().ForceGainState(0, q7sim::RxGainState{0, state, 14});
        std::string expected = "    Front End gain state   = High   (Max gain) (" + std::to_string(state) + ")\n";
        EXPECT_TRUE(Contains(RunHandler(TestGetRxGainState, hCal, "0\n").output, expected)) << state;
    }
}

TEST_F(RxCommandsTest, PathsOutOfRangeAreRefusedByTheDevice)
{
    HandlerRun get = RunHandler(TestGetRxGainState, hCal, "2\n");
    EXPECT_EQ(get.result, -1);
    EXPECT_EQ(get.output, "\nGetRxGainState:\n    Rx path (0=Rx1; 1=Rx2) ? \nERROR: Rx path 2 is out of range (0-1)\n");

    HandlerRun set = RunHandler(TestSetRxGainState, hCal, "3\n0\n2\n14\n");
    EXPECT_EQ(set.result, -1);
    EXPECT_TRUE(Contains(set.output, "? \nERROR: Rx path 3 is out of range (0-2)\n"));

    HandlerRun pga = RunHandler(TestSetRxGainState, hCal, "0\n0\n2\n-1\n");
    EXPECT_TRUE(Contains(pga.output, "\nERROR: PGA gain index -1 is out of range (0-31)\n"));
}

TEST_F(RxCommandsTest, EndOfInputLeavesTheGainStateAlone)
{
    HandlerRun ended = RunHandler(TestSetRxGainState, hCal, "0\n1\n0\n");
    EXPECT_EQ(ended.result, -1);
    EXPECT_TRUE(Contains(RunHandler(TestGetRxGainState, hCal, "0\n").output, "    PGA gain index = 14\n"));
}

TEST_F(RxCommandsTest, RssiReportLayout)
{
    HandlerRun report = RunHandler(TestGetRSSIReport, hCal);
    EXPECT_EQ(report.result, 0);
    const std::string dbm = "  -[0-9]{2}\\.[0-9]{2} dBm\n";
    EXPECT_TRUE(Matches(report.output, "\nGetRSSIReport:\n"
                                       "    Rx1 RSSI              =" + dbm +
                                           "    Rx2 RSSI              =" + dbm +
                                           "    Combined RSSI         =" + dbm +
                                           "    Rx1 ADC input power   =" + dbm +
                                           "    Rx2 ADC input power   =" + dbm +
                                           "    Rx1 ADC clip count    = 0 \\(0\\.00 %\\)\n"
                                           "    Rx2 ADC clip count    = 0 \\(0\\.00 %\\)\n"
                                           "    Number of ADC samples = 56000\n"
                                           "\nGetRSSIReport was SUCCESSFUL.\n"))
        << report.output;
}

TEST_F(RxCommandsTest, ClipSharesAreQuotientsOfTheCounts)
{
    Rx().ForceAdcCounts(500, 0, 100000);
    std::string output = RunHandler(TestGetRSSIReport, hCal).output;
    EXPECT_TRUE(Contains(output,
                         "    Rx1 ADC clip count    = 500 (0.50 %)\n"
                         "    Rx2 ADC clip count    = 0 (0.00 %)\n"
                         "    Number of ADC samples = 100000\n"));

    // Zero samples: the shares are infinity and not-a-number as printf shows them.
    Rx().ForceAdcCounts(5, 0, 0);
    volatile double zero = 0.0;
    char infinite[64];
    char notANumber[64];
    std::snprintf(infinite, sizeof infinite, "    Rx1 ADC clip count    = 5 (%0.2f %%)\n", 5.0 * 100.0 / zero);
    std::snprintf(notANumber, sizeof notANumber, "    Rx2 ADC clip count    = 0 (%0.2f %%)\n", 0.0 * 100.0 / zero);
    HandlerRun report = RunHandler(TestGetRSSIReport, hCal);
    EXPECT_EQ(report.result, 0);
    EXPECT_TRUE(Contains(report.output, infinite)) << report.output;
    EXPECT_TRUE(Contains(report.output, notANumber)) << report.output;
    EXPECT_TRUE(Contains(report.output, "(inf %)"));
}

TEST_F(RxCommandsTest, CinrAndThermalNoiseLayouts)
{
    HandlerRun cinr = RunHandler(TestGetCINR, hCal);
    EXPECT_EQ(cinr.result, 0);
    EXPECT_TRUE(Matches(cinr.output, "\nGetCINR:\n"
                                     "    Combined CINR  = [0-9]+\\.[0-9]{2} dB\n"
                                     "    Antenna 1 CINR = [0-9]+\\.[0-9]{2} dB\n"
                                     "    Antenna 2 CINR = [0-9]+\\.[0-9]{2} dB\n"
                                     "\nGetCINR was SUCCESSFUL.\n"))
        << cinr.output;

    HandlerRun noise = RunHandler(TestGetPerAntThermalNoise, hCal);
    EXPECT_EQ(noise.result, 0);
    EXPECT_TRUE(Matches(noise.output, "\nGetPerAntThermalNoise:\n"
                                      "    Antenna 1 thermal noise = -9[0-9]\\.[0-9]{2} dBm\n"
                                      "    Antenna 2 thermal noise = -9[0-9]\\.[0-9]{2} dBm\n"
                                      "\nGetPerAntThermalNoise was SUCCESSFUL.\n"))
        << noise.output;
}

TEST_F(RxCommandsTest, FrameStatisticsCountFromTheResetAndShowNaWithoutSync)
{
    HandlerRun reset = RunHandler(TestResetFrameErrorStatistics, hCal);
    EXPECT_EQ(reset.result, 0);
    EXPECT_EQ(reset.output, "\nResetFrameErrorStatistics:\n\nResetFrameErrorStatistics was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetFrameErrorStatistics, hCal).output,
              "\nGetFrameErrorStatistics:\n"
              "    Total frames elapsed  = 1\n"
              "    Frames in error       = 0\n"
              "\nGetFrameErrorStatistics was SUCCESSFUL.\n");

    RunHandler(TestForceReSync, hCal);
    EXPECT_EQ(RunHandler(TestGetFrameErrorStatistics, hCal).output,
              "\nGetFrameErrorStatistics:\n"
              "    Total frames elapsed  = 2\n"
              "    Frames in error       = N/A\n"
              "\nGetFrameErrorStatistics was SUCCESSFUL.\n");

    Rx().ForceFrameStatistics(7, 0xFFFFFFFEu);
    EXPECT_TRUE(Contains(RunHandler(TestGetFrameErrorStatistics, hCal).output,
                         "    Total frames elapsed  = 7\n    Frames in error       = 4294967294\n"));
}

TEST_F(RxCommandsTest, DeviceErrorsEndEachCommandWithoutResultLines)
{
    struct Case {
        int (*handler)(CalInterfaceHandle);
        const char *operation;
        const char *input;
        const char *expected;
    };
    const Case cases[] = {
        {TestGetRxAntConfig, "Q7_GetRxAntConfig", "", "\nGetRxAntConfig:\n\nERROR: RFIC timeout\n"},
        {TestIsSync, "Q7_IsSync", "", "\nIsSync:\n\nERROR: RFIC timeout\n"},
        {TestForceReSync, "Q7_ForceReSync", "", "\nForce Re-sync:\n\nERROR: RFIC timeout\n"},
        {TestGetRSSIReport, "Q7_GetRSSIReport", "", "\nGetRSSIReport:\n\nERROR: RFIC timeout\n"},
        {TestGetCINR, "Q7_GetCINR", "", "\nGetCINR:\n\nERROR: RFIC timeout\n"},
        {TestGetPerAntThermalNoise, "Q7_GetPerAntThermalNoise", "",
         "\nGetPerAntThermalNoise:\n\nERROR: RFIC timeout\n"},
        {TestResetFrameErrorStatistics, "Q7_ResetFrameErrorStatistics", "",
         "\nResetFrameErrorStatistics:\n\nERROR: RFIC timeout\n"},
        {TestGetFrameErrorStatistics, "Q7_GetFrameErrorStatistics", "",
         "\nGetFrameErrorStatistics:\n\nERROR: RFIC timeout\n"},
        {TestGetRxGainState, "Q7_GetRxGainState", "0\n",
         "\nGetRxGainState:\n    Rx path (0=Rx1; 1=Rx2) ? \nERROR: RFIC timeout\n"},
    };
    for (const Case &c : cases) {
        q7sim::control::FailNext(c.operation, 1, "RFIC timeout");
        HandlerRun run = RunHandler(c.handler, hCal, c.input);
        EXPECT_EQ(run.result, -1) << c.operation;
        EXPECT_EQ(run.output, c.expected) << c.operation;
    }
}

}  // namespace
