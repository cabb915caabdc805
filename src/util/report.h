/* The common ending of every handler: the library's error text, or the
 * handler's result lines followed by its SUCCESSFUL line. */
#ifndef Q7_REPORT_H
#define Q7_REPORT_H

#include <stdbool.h>

#include "Q7CalAPI.h"

/* Prints "\nERROR: %s\n" for a failed status; true when it did. */
bool ReportError(ApiStatus status);

/* Prints "\n%s was SUCCESSFUL.\n" with the name; returns 0. */
int ReportSuccess(const char *sName);

/* For an operation without result lines: -1 after the error, or 0 after the
 * SUCCESSFUL line. */
int ReportOutcome(ApiStatus status, const char *sName);

#endif /* Q7_REPORT_H */
