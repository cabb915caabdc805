#include "connection.h"

#include <stdio.h>
#include <stdlib.h>

#include "host_time.h"
#include "printed_texts.h"

#define CONNECT_ATTEMPTS 10
#define CONNECT_RETRY_MS 1000u
#define CAL_INTERFACE_BUFFER_SIZE 128

uint32_t gs_u32InterfaceType = 0;

int Initialize(CalInterfaceHandle hCal)
{
    if (hCal == NULL)
        return -1;
    for (int iAttempt = 0; iAttempt < CONNECT_ATTEMPTS; iAttempt++) {
        printf("\n" TEXT_CONNECTING);
        fflush(stdout);
        ApiStatus status = Q7_ConnectDevice(hCal);
        if (status == NULL) {
            printf("Success!!\n");
            return 0;
        }
        Q7_SleepMs(CONNECT_RETRY_MS);
        printf("\nFailed because: %s\n", status);
    }
    return -1;
}

CalInterfaceHandle SelectInterface(uint32_t *pu32InterfaceType)
{
    char sInterfaceBuffer[CAL_INTERFACE_BUFFER_SIZE];

    *pu32InterfaceType = Q7_INTERFACE_LOCAL;
    CalInterfaceHandle hCal = Q7_GetCalInterface(*pu32InterfaceType, sInterfaceBuffer, NULL);
    if (Initialize(hCal) == -1) {
        printf("\nERROR: Unable to open a %s " TEXT_NO_INTERFACE "\n\n",
               *pu32InterfaceType == Q7_INTERFACE_LOCAL ? "Local" : "Host Proxy");
        exit(1);
    }
    return hCal;
}

void CloseApplication(CalInterfaceHandle hCal)
{
    printf("\nClosing application...\n");
    Q7_DisconnectDevice(hCal);
    Q7_CloseCalInterface();
}
