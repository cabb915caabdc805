/* In a file of its own, like the sleep, so that a test or the fuzzer can link
 * a clock of its own instead. */
#include <stddef.h>
#include <sys/time.h>

#include "data_utils.h"

double GetElapsedTimeMs(void)
{
    struct timeval stNow;
    gettimeofday(&stNow, NULL);
    return (double)stNow.tv_sec * 1000.0 + (double)stNow.tv_usec / 1000.0;
}
