// Sleeps that return at once. Linked into q7cal_instant and the test program,
// instant_sleep.cpp sets the program's sleep hook at start, so that whole
// sessions with long mandated waits (the automated test) run in milliseconds;
// the test program reads back the sleeps that were asked for.
#ifndef Q7_TEST_INSTANT_SLEEP_H
#define Q7_TEST_INSTANT_SLEEP_H

#include <cstdint>
#include <vector>

// Every sleep asked for since the last ForgetSleeps(), in milliseconds.
const std::vector<uint32_t> &Sleeps();
void ForgetSleeps();
// Puts the instant, recording sleep back in place of a test's own.
void UseInstantSleep();

#endif
