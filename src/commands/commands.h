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

#endif /* Q7_COMMANDS_H */
