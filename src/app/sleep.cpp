/* Kept in a file of its own so that tests can link a recording stand-in. */
#include <unistd.h>

#include "connection.h"
#include "console.h"

/* A stop signal interrupts the sleep, which is not resumed; once one has
 * arrived, sleeps return at once. */
void Q7_SleepMs(uint32_t u32Milliseconds)
{
    if (u32Milliseconds == 0 || StopSignal() != 0)
        return;
    usleep(u32Milliseconds * 1000u);
}
