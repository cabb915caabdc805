#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "commands.h"
#include "console_capture.h"

namespace {

class RxCommandsTest : public SimulatedDeviceTest {
protected:
    q7sim::Receiver &Rx() { return device().rx; }
};

TEST_F(RxCommandsTest, AntennaConfigurationsAreShownByName)
{
    const char *const kNames[] = {"Rx1 only", "Rx2 only", "Rx1 + Rx2", "Unknown value"};
    for (uint32_t config = 0; config < 4; config++) {
        Rx().ForceAntConfig(config);
        EXPECT_TRUE(Contains(RunHandler(TestGetRxAntConfig, hCal).output,
                             "    RxAntConfig = " + std::string(kNames[config]) + "\n"));
    }
}

TEST_F(RxCommandsTest, FrontEndStatesAreNamedAndEveryStateAboveMediumIsHigh)
{
    for (uint32_t state : {1u, 2u, 7u, 0xFFFFFFFFu}) {
        Rx().ForceGainState(0, q7sim::RxGainState{0, state, 14});
        std::string expected = "    Front End gain state   = " +
                               std::string(state == 1 ? "Medium (Max gain - 12 dB)" : "High   (Max gain)") + " (" +
                               std::to_string(state) + ")\n";
        EXPECT_TRUE(Contains(RunHandler(TestGetRxGainState, hCal, "0\n").output, expected)) << state;
    }
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

TEST_F(RxCommandsTest, AnErrorCountJustBelowTheNoSyncMarkIsShownAsANumber)
{
    Rx().ForceFrameStatistics(7, 0xFFFFFFFEu);
    EXPECT_TRUE(Contains(RunHandler(TestGetFrameErrorStatistics, hCal).output,
                         "    Total frames elapsed  = 7\n    Frames in error       = 4294967294\n"));
}

}  // namespace
