#include <stdbool.h>
#include <stdlib.h>
#include <time.h>

#include "command_line.h"
#include "connection.h"
#include "console.h"
#include "menu.h"

/* 128 + N after stop signal N; 4 when standard output could not be written;
 * 3 when input ended inside a command; else 0. */
static int ExitStatus(bool bCommandCutShort)
{
    bool bOutputWritten = FinishOutput();
    if (StopSignal() != 0)
        return 128 + StopSignal();
    if (!bOutputWritten)
        return 4;
    return bCommandCutShort ? 3 : 0;
}

int main(int argc, char *argv[])
{
    OpenClosedStandardDescriptors();
    int iStatus = HandleCommandLine(argc, argv);
    if (iStatus != COMMAND_LINE_RUN)
        return iStatus;

    srand((unsigned int)time(NULL));
    CatchStopSignals();
    CalInterfaceHandle hCal = SelectInterface(&gs_u32InterfaceType);
    bool bCommandCutShort = RunMenu(hCal);
    CloseApplication(hCal);
    return ExitStatus(bCommandCutShort);
}
