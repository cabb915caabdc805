/* The host's sleep and clock. Q7_SleepMs and GetElapsedTimeMs call through
 * two hooks, which hold the real usleep and gettimeofday until a test (or the
 * program built to run its sleeps at once) puts its own in place: every wait
 * of the program goes through here. */
#ifndef Q7_HOST_TIME_H
#define Q7_HOST_TIME_H

#include <stdint.h>

/* Sleeps the given milliseconds; 0 returns at once. Once a stop signal has
 * arrived it returns at once, and the signal interrupts a sleep under way. */
void Q7_SleepMs(uint32_t u32Milliseconds);

/* Wall-clock milliseconds with microsecond resolution; take differences. */
double GetElapsedTimeMs(void);

typedef void (*SleepFunction)(uint32_t u32Milliseconds);
typedef double (*ClockFunction)(void);

extern SleepFunction gs_pfnSleepMs;
extern ClockFunction gs_pfnClockMs;

#endif /* Q7_HOST_TIME_H */
