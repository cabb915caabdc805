#include "instant_sleep.h"

#include "host_time.h"

static std::vector<uint32_t> &Recorded()
{
    static std::vector<uint32_t> sleeps;
    return sleeps;
}

static void RecordSleep(uint32_t u32Milliseconds) { Recorded().push_back(u32Milliseconds); }

const std::vector<uint32_t> &Sleeps() { return Recorded(); }

void ForgetSleeps() { Recorded().clear(); }

void UseInstantSleep() { gs_pfnSleepMs = RecordSleep; }

static const bool gs_bInstantAtStart = (UseInstantSleep(), true);
