/* The echo test: one echo exchange with the device through the library. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "console.h"
#include "diagnostics.h"

int TestEchoTest(CalInterfaceHandle hCal)
{
    uint32_t u32MessageLength = 0;

    if (!BeginCommand(hCal, "\nEcho test:"))
        return -1;
    if (!ReadUnsigned(&u32MessageLength, "    Message length in bytes (dec) ? "))
        return -1;
    if (ReportError(Q7_EchoTest(hCal, u32MessageLength)))
        return -1;
    puts("\nEcho test operation was SUCCESSFUL.");
    return ReportSuccess("TestEchoTest");
}
