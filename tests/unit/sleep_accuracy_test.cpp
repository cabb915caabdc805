#include <gtest/gtest.h>

#include <signal.h>

#include <string>
#include <vector>

#include "console_capture.h"
#include "data_utils.h"
#include "diagnostics.h"
#include "host_time.h"
#include "instant_sleep.h"

namespace {

// Stand-ins for the host clock and sleep: the clock moves by a fixed step at
// every reading, and a sleep moves it by what was asked plus an overshoot.
double g_clockMs = 0.0;
double g_stepMs = 0.0;
double g_overshootMs = 0.0;
unsigned long g_readings = 0;
std::vector<uint32_t> g_sleeps;

double SteppingClockMs(void)
{
    g_readings++;
    g_clockMs += g_stepMs;
    return g_clockMs;
}

void OvershootingSleepMs(uint32_t u32Milliseconds)
{
    g_sleeps.push_back(u32Milliseconds);
    if (u32Milliseconds != 0)
        g_clockMs += u32Milliseconds + g_overshootMs;
}

// Any non-null handle: the test makes no Cal API call.
CalInterfaceHandle AnyHandle() { return reinterpret_cast<CalInterfaceHandle>(&g_clockMs); }

class SleepAccuracyTestTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        gs_pfnClockMs = SteppingClockMs;
        gs_pfnSleepMs = OvershootingSleepMs;
        g_clockMs = 1000.0;
        g_stepMs = 0.0;
        g_overshootMs = 0.0;
        g_readings = 0;
        g_sleeps.clear();
    }
    void TearDown() override
    {
        gs_pfnClockMs = s_pfnHostClockMs;
        UseInstantSleep();
    }
    static inline const ClockFunction s_pfnHostClockMs = gs_pfnClockMs;
};

TEST_F(SleepAccuracyTestTest, ReportsTheResolutionAndFiveDurationsEach200Sleeps)
{
    g_stepMs = 0.25;
    g_overshootMs = 0.1;
    HandlerRun run = RunHandler(SleepAccuracyTest, AnyHandle());
    EXPECT_EQ(run.result, 0);
    // Each Actual figure is (200 sleeps + one clock step) / 200.
    EXPECT_EQ(run.output,
              "Checking time resolution over 1000000 iterations ...\n"
              "Estimated resolution = 0.2500 ms\n"
              "Checking sleep function over 200 iterations ...\n"
              "Actual  0.00 ms - Nominal =  0.00 ms - Excess = 0.00 ms\n"
              "Actual  5.10 ms - Nominal =  5.00 ms - Excess = 0.10 ms\n"
              "Actual 10.10 ms - Nominal = 10.00 ms - Excess = 0.10 ms\n"
              "Actual 15.10 ms - Nominal = 15.00 ms - Excess = 0.10 ms\n"
              "Actual 20.10 ms - Nominal = 20.00 ms - Excess = 0.10 ms\n"
              "\n"
              "\nSleepAccuracyTest was SUCCESSFUL.\n");

    // One reading before the resolution loop, one per iteration, two per duration.
    EXPECT_EQ(g_readings, 1u + 1000000u + 5u * 2u);
    std::vector<uint32_t> expected;
    for (uint32_t nominal : {0u, 5u, 10u, 15u, 20u})
        expected.insert(expected.end(), 200, nominal);
    EXPECT_EQ(g_sleeps, expected);
}

// A signal in the sleeps: the figure of the cut duration is the last, and the
// command says it was abandoned.
TEST_F(SleepAccuracyTestTest, ASignalEndsItAfterTheDurationItCutShort)
{
    gs_pfnSleepMs = [](uint32_t u32Milliseconds) {
        static bool s_bRaised = false;
        if (u32Milliseconds == 5 && !s_bRaised) {
            s_bRaised = true;
            raise(SIGTERM);
        }
    };
    CatchStopSignalsInTest();
    HandlerRun run = RunHandler(SleepAccuracyTest, AnyHandle());
    ReleaseStopSignals();
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "Nominal =  5.00 ms - Excess = -5.00 ms\n\nInterrupted by SIGTERM: command abandoned.\n"))
        << run.output;
}

}  // namespace
