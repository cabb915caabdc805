#include "command_steps.h"

#include <stdio.h>

#include "console.h"

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
    printf("\n%s was SUCCESSFUL.\n", sName);
    return 0;
}

int ReportOutcome(ApiStatus status, const char *sName)
{
    return ReportError(status) ? -1 : ReportSuccess(sName);
}

/* The reader of each value type: the prompt goes to it as text, not as a
 * format. */
static bool ReadValue(uint32_t *pu32Value, const char *sPrompt) { return ReadUnsigned(pu32Value, "%s", sPrompt); }
static bool ReadValue(int32_t *pi32Value, const char *sPrompt) { return ReadSigned(pi32Value, "%s", sPrompt); }
static bool ReadValue(double *pdValue, const char *sPrompt) { return ReadDouble(pdValue, "%s", sPrompt); }

template <typename Value>
static int SetValueCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt,
                           ApiStatus (*pfnSet)(CalInterfaceHandle, Value), const char *sName)
{
    Value value = 0;
    if (!BeginCommand(hCal, sHeading) || !ReadValue(&value, sPrompt))
        return -1;
    return ReportOutcome(pfnSet(hCal, value), sName);
}

int SetUnsignedCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetUnsignedOp pfnSet,
                       const char *sName)
{
    return SetValueCommand(hCal, sHeading, sPrompt, pfnSet, sName);
}

int SetSignedCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetSignedOp pfnSet,
                     const char *sName)
{
    return SetValueCommand(hCal, sHeading, sPrompt, pfnSet, sName);
}

int SetDoubleCommand(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, SetDoubleOp pfnSet,
                     const char *sName)
{
    return SetValueCommand(hCal, sHeading, sPrompt, pfnSet, sName);
}

template <typename Value>
static bool GetValue(CalInterfaceHandle hCal, const char *sHeading, ApiStatus (*pfnGet)(CalInterfaceHandle, Value *),
                     Value *pValue)
{
    return BeginCommand(hCal, sHeading) && !ReportError(pfnGet(hCal, pValue));
}

bool GetUnsignedValue(CalInterfaceHandle hCal, const char *sHeading, GetUnsignedOp pfnGet, uint32_t *pu32Value)
{
    return GetValue(hCal, sHeading, pfnGet, pu32Value);
}

bool GetSignedValue(CalInterfaceHandle hCal, const char *sHeading, GetSignedOp pfnGet, int32_t *pi32Value)
{
    return GetValue(hCal, sHeading, pfnGet, pi32Value);
}

bool GetDoubleValue(CalInterfaceHandle hCal, const char *sHeading, GetDoubleOp pfnGet, double *pdValue)
{
    return GetValue(hCal, sHeading, pfnGet, pdValue);
}

int ActionCommand(CalInterfaceHandle hCal, const char *sHeading, ActionOp pfnAction, const char *sName)
{
    if (!BeginCommand(hCal, sHeading))
        return -1;
    return ReportOutcome(pfnAction(hCal), sName);
}

const char *EnabledText(uint32_t u32Setting) { return u32Setting != 0 ? "Enabled" : "Disabled"; }
