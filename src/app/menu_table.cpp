#include <stddef.h>

#include "commands.h"
#include "menu.h"

/* Groups and their commands in menu order. A group starts at the row that
 * carries its title; the row of NULLs ends the table. */
const MenuItem MenuEntry[] = {
    {"Configuration Commands", "Connect device", TestConnectDevice},
    {NULL, "Disconnect device", TestDisconnectDevice},
    {NULL, "Get device mode", TestGetDeviceMode},
    {NULL, "Set device mode", TestSetDeviceMode},
    {NULL, "Get band configuration", TestGetBandConfig},
    {NULL, "Set band configuration", TestSetBandConfig},

    {NULL, NULL, NULL},
};
