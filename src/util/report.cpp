#include "report.h"

#include <stdio.h>

bool ReportError(ApiStatus status)
{
    if (status == NULL)
        return false;
    printf("\nERROR: %s\n", status);
    return true;
}

int ReportSuccess(const char *sName)
{
    printf("\n%s was SUCCESSFUL.\n", sName);
    return 0;
}

int ReportOutcome(ApiStatus status, const char *sName)
{
    return ReportError(status) ? -1 : ReportSuccess(sName);
}
