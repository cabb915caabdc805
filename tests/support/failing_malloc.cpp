#include "failing_malloc.h"

#include <cstddef>

namespace {

bool gs_counting = false;
unsigned gs_counted = 0;
unsigned gs_failing = 0;

// Counts one allocation; true for the one that is to fail.
bool FailsNow() { return gs_counting && ++gs_counted == gs_failing; }

}  // namespace

extern "C" void *__real_malloc(size_t size);
extern "C" void *__real_calloc(size_t count, size_t size);

extern "C" void *__wrap_malloc(size_t size)
{
    return FailsNow() ? nullptr : __real_malloc(size);
}

extern "C" void *__wrap_calloc(size_t count, size_t size)
{
    return FailsNow() ? nullptr : __real_calloc(count, size);
}

void CountAllocations(unsigned failing)
{
    gs_counted = 0;
    gs_failing = failing;
    gs_counting = true;
}

unsigned StopCountingAllocations()
{
    gs_counting = false;
    return gs_counted;
}
