/*
 * The steps every handler shares, so that each handler reads as its own
 * prompts, call and result lines:
 *  - BeginCommand opens a handler: a null handle ends it with no output;
 *    otherwise the heading line is printed;
 *  - ReportError / ReportSuccess / ReportOutcome end it: the library's error
 *    text, or the handler's result lines followed by its SUCCESSFUL line;
 *  - Set*Command: a whole handler that asks for one value and passes it to one
 *    operation (heading, prompt, call, the common ending);
 *  - Get*Value: the first half of a handler that reads one value (heading,
 *    call); the handler prints its result line and its SUCCESSFUL line;
 *  - ActionCommand: a whole handler that calls one operation without values.
 * At end of input a handler returns -1 before it calls the device.
 */
#ifndef Q7_COMMAND_STEPS_H
#define Q7_COMMAND_STEPS_H

#include <stdbool.h>
#include <stdint.h>

#include "Q7CalAPI.h"

typedef ApiStatus (*SetUnsignedOp)(CalInterfaceHandle hCal, uint32_t u32Value);
typedef ApiStatus (*SetSignedOp)(CalInterfaceHandle hCal, int32_t i32Value);
typedef ApiStatus (*SetDoubleOp)(CalInterfaceHandle hCal, double dValue);
typedef ApiStatus (*GetUnsignedOp)(CalInterfaceHandle hCal, uint32_t *pu32Value);
typedef ApiStatus (*GetSignedOp)(CalInterfaceHandle hCal, int32_t *pi32Value);
typedef ApiStatus (*GetDoubleOp)(CalInterfaceHandle hCal, double *pdValue);
typedef ApiStatus (*ActionOp)(CalInterfaceHandle hCal);

/* False for a null handle (nothing printed); else prints the heading line. */
bool BeginCommand(CalInterfaceHandle hCal, const char *sHeading);

/* Prints "\nERROR: %s\n" for a failed status; true when it did. */
bool ReportError(ApiStatus status);

/* Prints "\n%s was SUCCESSFUL.\n" with the name; returns 0. */
int ReportSuccess(const char *sName);

/* For an operation without result lines: -1 after the error, or 0 after the
 * SUCCESSFUL line. */
int ReportOutcome(ApiStatus status, const char *sName);

/* Heading, the prompt (printed as given, no line end) read with "%u", "%d" or
 * "%lg", the operation, then the error line and -1 or the SUCCESSFUL line
 * with sName and 0. */
int SetUnsignedCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetUnsignedOp pfnSet,
                       const char *sName);
int SetSignedCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetSignedOp pfnSet,
                     const char *sName);
int SetDoubleCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetDoubleOp pfnSet,
                     const char *sName);

/* Heading and the operation: true with the value read, or false after the
 * error line (or for a null handle). */
bool GetUnsignedValue(CalInterfaceHandle hCal, const char *sHeading, GetUnsignedOp pfnGet, uint32_t *pu32Value);
bool GetSignedValue(CalInterfaceHandle hCal, const char *sHeading, GetSignedOp pfnGet, int32_t *pi32Value);
bool GetDoubleValue(CalInterfaceHandle hCal, const char *sHeading, GetDoubleOp pfnGet, double *pdValue);

/* Heading, the operation, the common ending. */
int ActionCommand(CalInterfaceHandle hCal, const char *sHeading, ActionOp pfnAction, const char *sName);

/* "Enabled" for a nonzero setting, "Disabled" for 0. */
const char *EnabledText(uint32_t u32Setting);

#endif /* Q7_COMMAND_STEPS_H */
