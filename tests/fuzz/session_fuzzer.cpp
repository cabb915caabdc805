// libFuzzer target: arbitrary bytes are the whole standard input of a session
// of the program against a factory-fresh simulated device, from start-up to
// "Closing application...". Sleeps return at once (instant_sleep.cpp), the
// clock only counts, and the dialogue goes to /dev/null, so that one input
// runs in well under a millisecond.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "SimControl.h"
#include "connection.h"
#include "console.h"
#include "data_utils.h"
#include "menu.h"

// Instead of the wall clock: the sleep accuracy test reads it a million times.
double GetElapsedTimeMs(void)
{
    static double s_dNowMs = 0.0;
    return s_dNowMs += 0.001;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static FILE *const discard = std::fopen("/dev/null", "w");
    // fmemopen refuses an empty buffer; /dev/null reads as one.
    FILE *input = size != 0 ? fmemopen(const_cast<uint8_t *>(data), size, "r") : std::fopen("/dev/null", "r");
    if (discard == nullptr || input == nullptr)
        std::abort();

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
