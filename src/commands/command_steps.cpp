#include "command_steps.h"

#include <stdio.h>

#include "console.h"
#include "report.h"

bool BeginCommand(CalInterfaceHandle hCal, const char *sHeading)
{
    if (hCal == NULL)
        return false;
    puts(sHeading);
    return true;
}

/* One set command per conversion: the prompt goes to its reader as text, not
 * as a format. */
#define DEFINE_SET_COMMAND(Name, Type, OpType, Reader)                                                      \
    int Name(CalInterfaceHandle hCal, const char *sHeading, const char *sPrompt, OpType pfnSet,             \
             const char *sName)                                                                           \
    {                                                                                                     \
        Type value = 0;                                                                                   \
        if (!BeginCommand(hCal, sHeading) || !Reader(&value, "%s", sPrompt))                              \
            return -1;                                                                                    \
        return ReportOutcome(pfnSet(hCal, value), sName);                                                 \
    }

DEFINE_SET_COMMAND(SetUnsignedCommand, uint32_t, SetUnsignedOp, ReadUnsigned)
DEFINE_SET_COMMAND(SetSignedCommand, int32_t, SetSignedOp, ReadSigned)
DEFINE_SET_COMMAND(SetDoubleCommand, double, SetDoubleOp, ReadDouble)

#define DEFINE_GET_VALUE(Name, Type, OpType)                                                 \
    bool Name(CalInterfaceHandle hCal, const char *sHeading, OpType pfnGet, Type *pValue)    \
    {                                                                                        \
        return BeginCommand(hCal, sHeading) && !ReportError(pfnGet(hCal, pValue));           \
    }

DEFINE_GET_VALUE(GetUnsignedValue, uint32_t, GetUnsignedOp)
DEFINE_GET_VALUE(GetSignedValue, int32_t, GetSignedOp)
DEFINE_GET_VALUE(GetDoubleValue, double, GetDoubleOp)

int ActionCommand(CalInterfaceHandle hCal, const char *sHeading, ActionOp pfnAction, const char *sName)
{
    if (!BeginCommand(hCal, sHeading))
        return -1;
    return ReportOutcome(pfnAction(hCal), sName);
}

const char *EnabledText(uint32_t u32Setting) { return u32Setting != 0 ? "Enabled" : "Disabled"; }
