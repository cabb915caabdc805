/* Kept in a file of its own so that tests can link a recording stand-in. */
#include <unistd.h>

#include "connection.h"

void Q7_SleepMs(uint32_t u32Milliseconds)
{
    if (u32Milliseconds == 0)
        return;
    usleep(u32Milliseconds * 1000u);
}
