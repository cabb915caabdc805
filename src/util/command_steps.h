/*
 * The steps every handler shares, so that each handler reads as its own
 * prompts, call and result lines:
 *  - BeginCommand opens a handler: a null handle ends it with no output;
 *    otherwise the heading line is printed;
 *  - the Read* prompt readers of console.h take its answers;
 *  - ReportError / ReportSuccess / ReportOutcome end it: the library's error
 *    text, or the handler's result lines followed by its SUCCESSFUL line.
 * So a handler reads as heading, prompts, call, result lines:
 *
 *     if (!BeginCommand(hCal, "\nSetTxPhiWord:") || !ReadUnsigned(&u32Value, "..."))
 *         return -1;
 *     return ReportOutcome(Q7_SetTxPhiWord(hCal, u32Value), "SetTxPhiWord");
 *
 * When the session ends at a prompt, a handler returns -1 before it calls the
 * device.
 */
#ifndef Q7_COMMAND_STEPS_H
#define Q7_COMMAND_STEPS_H

#include <stdbool.h>
#include <stdint.h>

#include "Q7CalAPI.h"

/* False for a null handle (nothing printed); else prints the heading line. */
bool BeginCommand(CalInterfaceHandle hCal, const char *sHeading);

/* Prints "\nERROR: %s\n" for a failed status; true when it did. */
bool ReportError(ApiStatus status);

/* Prints "\n%s was SUCCESSFUL.\n" with the name; returns 0. */
int ReportSuccess(const char *sName);

/* For an operation without result lines: -1 after the error, or 0 after the
 * SUCCESSFUL line. */
int ReportOutcome(ApiStatus status, const char *sName);

/* "Enabled" for a nonzero setting, "Disabled" for 0. */
const char *EnabledText(uint32_t u32Setting);

#endif /* Q7_COMMAND_STEPS_H */
