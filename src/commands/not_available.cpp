#include <stdio.h>

#include "commands.h"

int CommandNotAvailable(CalInterfaceHandle)
{
    printf("\nThis command is not available yet.\n");
    return -1;
}
