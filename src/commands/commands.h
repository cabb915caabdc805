/* The handlers of the menu entries, group by group in menu order. Each takes
 * the interface handle and returns 0 for success, -1 for failure. */
#ifndef Q7_COMMANDS_H
#define Q7_COMMANDS_H

#include "Q7CalAPI.h"

/* Configuration Commands */
int TestConnectDevice(CalInterfaceHandle hCal);
int TestDisconnectDevice(CalInterfaceHandle hCal);
int TestGetDeviceMode(CalInterfaceHandle hCal);
int TestSetDeviceMode(CalInterfaceHandle hCal);
int TestGetBandConfig(CalInterfaceHandle hCal);
int TestSetBandConfig(CalInterfaceHandle hCal);

/* Rx Commands */

/* Tx Commands */

/* Loopback Calibration Commands */

/* Other Commands */

/* DSD Management Commands (and section selection and copy) */

/* DSD Read/Write Commands */

/* Library Configuration Commands */

/* Test Commands */

/* Stands in for a menu row whose command is not written yet. */
int CommandNotAvailable(CalInterfaceHandle hCal);

#endif /* Q7_COMMANDS_H */
