/* The sleep accuracy test: the resolution of the host's millisecond clock,
 * then how long the millisecond sleep really sleeps. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "console.h"
#include "host_time.h"
#include "data_utils.h"
#include "diagnostics.h"

#define CLOCK_RESOLUTION_ITERATIONS 1000000u
#define INITIAL_SMALLEST_DIFFERENCE_MS 100000000.0
#define SLEEP_CALLS_PER_DURATION 200u
#define LONGEST_NOMINAL_SLEEP_MS 20u
#define NOMINAL_SLEEP_STEP_MS 5u

int SleepAccuracyTest(CalInterfaceHandle hCal)
{
    if (hCal == NULL)
        return -1;

    printf("Checking time resolution over %u iterations ...\n", CLOCK_RESOLUTION_ITERATIONS);
    double dPreviousMs = GetElapsedTimeMs();
    double dSmallestDifferenceMs = INITIAL_SMALLEST_DIFFERENCE_MS;
    /* Nothing but clock readings in this loop, or the estimate grows. */
    for (uint32_t i = 0; i < CLOCK_RESOLUTION_ITERATIONS; i++) {
        double dNowMs = GetElapsedTimeMs();
        double dDifferenceMs = dNowMs - dPreviousMs;
        dPreviousMs = dNowMs;
        if (dDifferenceMs != 0.0 && dDifferenceMs < dSmallestDifferenceMs)
            dSmallestDifferenceMs = dDifferenceMs;
    }
    printf("Estimated resolution = %0.4f ms\n", dSmallestDifferenceMs);

    printf("Checking sleep function over %u iterations ...\n", SLEEP_CALLS_PER_DURATION);
    for (uint32_t u32NominalMs = 0; u32NominalMs <= LONGEST_NOMINAL_SLEEP_MS; u32NominalMs += NOMINAL_SLEEP_STEP_MS) {
        double dStartMs = GetElapsedTimeMs();
        for (uint32_t i = 0; i < SLEEP_CALLS_PER_DURATION; i++)
            Q7_SleepMs(u32NominalMs);
        double dActualMs = (GetElapsedTimeMs() - dStartMs) / (double)SLEEP_CALLS_PER_DURATION;
        double dNominalMs = (double)u32NominalMs;
        printf("Actual %5.2f ms - Nominal = %5.2f ms - Excess = %4.2f ms\n", dActualMs, dNominalMs,
               dActualMs - dNominalMs);
        if (StopSignal() != 0) /* the sleeps were cut short: no figure is true */
            return AbandonCommand();
    }
    printf("\n");
    return ReportSuccess("SleepAccuracyTest");
}
