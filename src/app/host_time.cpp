#include "host_time.h"

#include <stddef.h>
#include <sys/time.h>
#include <unistd.h>

#include "console.h"

static void HostSleepMs(uint32_t u32Milliseconds)
{
    if (u32Milliseconds != 0)
        usleep(u32Milliseconds * 1000u);
}

static double HostClockMs(void)
{
    struct timeval stNow;
    gettimeofday(&stNow, NULL);
    return (double)stNow.tv_sec * 1000.0 + (double)stNow.tv_usec / 1000.0;
}

SleepFunction gs_pfnSleepMs = HostSleepMs;
ClockFunction gs_pfnClockMs = HostClockMs;

/* A stop signal interrupts the sleep, which is not resumed; once one has
 * arrived, sleeps return at once. */
void Q7_SleepMs(uint32_t u32Milliseconds)
{
    if (StopSignal() == 0)
        gs_pfnSleepMs(u32Milliseconds);
}

double GetElapsedTimeMs(void) { return gs_pfnClockMs(); }
