#include <stdlib.h>
#include <time.h>

#include "connection.h"
#include "menu.h"

int main(void)
{
    srand((unsigned int)time(NULL));
    CalInterfaceHandle hCal = SelectInterface(&gs_u32InterfaceType);
    RunMenu(hCal);
    CloseApplication(hCal);
    return 0;
}
