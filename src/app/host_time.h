/* The host's sleep and clock. Q7_SleepMs and GetElapsedTimeMs call through
 * these two hooks, which hold the real usleep and gettimeofday until a test
 * (or the program built to run its sleeps at once) puts its own in place. */
#ifndef Q7_HOST_TIME_H
#define Q7_HOST_TIME_H

#include <stdint.h>

typedef void (*SleepFunction)(uint32_t u32Milliseconds);
typedef double (*ClockFunction)(void);

extern SleepFunction gs_pfnSleepMs;
extern ClockFunction gs_pfnClockMs;

#endif /* Q7_HOST_TIME_H */
