/* Opening the Cal API interface and connecting the device; closing at exit. */
#ifndef Q7_CONNECTION_H
#define Q7_CONNECTION_H

#include <stdint.h>

#include "Q7CalAPI.h"

/* The interface type chosen at start: always 0, the local interface. */
extern uint32_t gs_u32InterfaceType;

/* Opens the interface and connects the device, or ends the program with
 * status 1 after "Unable to open". Stores the interface type through the pointer. */
CalInterfaceHandle SelectInterface(uint32_t *pu32InterfaceType);

/* Up to 10 connect attempts, 1000 ms apart: 0 when connected, else -1. */
int Initialize(CalInterfaceHandle hCal);

/* Prints "Closing application...", disconnects and closes the interface;
 * their results are not looked at. */
void CloseApplication(CalInterfaceHandle hCal);

#endif /* Q7_CONNECTION_H */
