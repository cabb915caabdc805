#include "command_steps.h"
#include "printed_texts.h"

#include <stdio.h>


bool BeginCommand(CalInterfaceHandle hCal, const char *sHeading)
{
    if (hCal == NULL)
        return false;
    puts(sHeading);
    return true;
}

bool ReportError(ApiStatus status)
{
    if (status == NULL)
        return false;
    printf("\nERROR: %s\n", status);
    return true;
}

int ReportSuccess(const char *sName)
{
    printf("\n%s" TEXT_SUCCESSFUL "\n", sName);
    return 0;
}

int ReportOutcome(ApiStatus status, const char *sName)
{
    return ReportError(status) ? -1 : ReportSuccess(sName);
}

const char *EnabledText(uint32_t u32Setting) { return u32Setting != 0 ? "Enabled" : "Disabled"; }
