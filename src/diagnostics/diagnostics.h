/* The diagnostic tests of the "Test Commands" group. Each takes the interface
 * handle and returns 0 for success, -1 for failure. */
#ifndef Q7_DIAGNOSTICS_H
#define Q7_DIAGNOSTICS_H

#include "Q7CalAPI.h"

/* Has the library run an echo exchange of a length the user gives. */
int TestEchoTest(CalInterfaceHandle hCal);

/* Estimates the host clock's resolution and measures how long the
 * millisecond sleep really sleeps; makes no Cal API call. Takes about 10 s. */
int SleepAccuracyTest(CalInterfaceHandle hCal);

/* Copies the DSD into the device's DSD buffer from a fixed offset, then
 * zeroes it there, loading from the buffer and showing the block checksums
 * after each step; restores the device mode at the end. */
int NvmModeTest(CalInterfaceHandle hCal);

#endif /* Q7_DIAGNOSTICS_H */
