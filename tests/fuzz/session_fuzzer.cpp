// libFuzzer target: arbitrary bytes are the whole standard input of a session
// of the program against a factory-fresh simulated device, from start-up to
// "Closing application...". Sleeps return at once and the clock only counts
// (the hooks of host_time.h), and the dialogue goes to /dev/null, so that one
// input runs in well under a millisecond.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "SimControl.h"
#include "connection.h"
#include "console.h"
#include "host_time.h"
#include "menu.h"

// Instead of the wall clock: the sleep accuracy test reads it a million times.
static double CountingClockMs(void)
{
    static double s_dNowMs = 0.0;
    return s_dNowMs += 0.001;
}

static void NoSleep(uint32_t) {}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static FILE *const discard = std::fopen("/dev/null", "w");
    // fmemopen refuses an empty buffer; /dev/null reads as one.
    FILE *input = size != 0 ? fmemopen(const_cast<uint8_t *>(data), size, "r") : std::fopen("/dev/null", "r");
    if (discard == nullptr || input == nullptr)
        std::abort();

    gs_pfnSleepMs = NoSleep;
    gs_pfnClockMs = CountingClockMs;
    q7sim::control::Reset();
    std::srand(1);
    FILE *savedIn = stdin;
    FILE *savedOut = stdout;
    stdin = input;
    stdout = discard;
    ResetInputState();

    CalInterfaceHandle hCal = SelectInterface(&gs_u32InterfaceType);
    RunMenu(hCal);
    CloseApplication(hCal);

    std::fflush(stdout);
    stdin = savedIn;
    stdout = savedOut;
    std::fclose(input);
    return 0;
}
