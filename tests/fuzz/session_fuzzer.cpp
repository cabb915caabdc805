// libFuzzer target: each input is a faulted session (faulted_session.h). A
// session that the judges find fault with aborts, so that libFuzzer keeps
// its input; at exit, a line counts the sessions run and those faulted.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "faulted_session.h"

static unsigned long gs_ulSessions = 0;
static unsigned long gs_ulFaulted = 0;

static void PrintCounts(void)
{
    std::fprintf(stderr, "q7cal_fuzz: %lu sessions, %lu of them faulted\n", gs_ulSessions, gs_ulFaulted);
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    std::atexit(PrintCounts);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FaultedSession session = RunFaultedSession(data, size);
    gs_ulSessions++;
    gs_ulFaulted += session.faulted;
    if (session.finding.empty())
        return 0;
    const std::string &output = session.output;
    std::fprintf(stderr, "\nFINDING: %s--- the session's output, its last 4000 bytes:\n%s\n---\n",
                 session.finding.c_str(), output.substr(output.size() > 4000 ? output.size() - 4000 : 0).c_str());
    std::abort();
}
