// A malloc and calloc that fail on request, for the program's allocation-failure
// paths. The test program is linked with --wrap=malloc and --wrap=calloc: every
// malloc and calloc that the program's code calls comes here first; the C and
// C++ libraries' own allocations (operator new, stdio) do not.
#ifndef Q7_TEST_FAILING_MALLOC_H
#define Q7_TEST_FAILING_MALLOC_H

// Counts the mallocs and callocs from now on; the `failing`-th of them (1 = the
// next) returns null, and none when it is 0.
void CountAllocations(unsigned failing = 0);
// How many were counted; counting ends and nothing fails any more.
unsigned StopCountingAllocations();

#endif
