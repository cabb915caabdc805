#include <stdlib.h>
#include <time.h>

#include "command_line.h"
#include "connection.h"
#include "menu.h"

int main(int argc, char *argv[])
{
    int iStatus = HandleCommandLine(argc, argv);
    if (iStatus != COMMAND_LINE_RUN)
        return iStatus;

    srand((unsigned int)time(NULL));
    CalInterfaceHandle hCal = SelectInterface(&gs_u32InterfaceType);
    RunMenu(hCal);
    CloseApplication(hCal);
    return 0;
}
