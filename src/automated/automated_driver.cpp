/* The automated test driver and the device-mode stack. */
#include <stdio.h>

#include "automated.h"
#include "console.h"
#include "printed_texts.h"

DeviceMode astDeviceModeStack[DEVICE_MODE_STACK_RECORDS];
uint32_t u32DeviceModeStackPointer = 0;

void PushDeviceMode(CalInterfaceHandle hCal, uint32_t u32DutMode, uint32_t u32ModulationType,
                    int32_t i32CwOffsetKHz, uint32_t u32LoopbackTx)
{
    if (u32DeviceModeStackPointer >= DEVICE_MODE_STACK_RECORDS - 1) {
        printf("ERROR: Device mode stack OVERFLOW\n");
        return;
    }
    u32DeviceModeStackPointer++;
    astDeviceModeStack[u32DeviceModeStackPointer] =
        DeviceMode{u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx};
    /* The record stays pushed whatever the device answers. */
    (void)Q7_SetDeviceMode(hCal, u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx);
    printf(TEXT_PUSH_FORMAT,
           (int)u32DeviceModeStackPointer, u32DutMode, u32ModulationType, (uint32_t)i32CwOffsetKHz, u32LoopbackTx);
}

void PopDeviceMode(CalInterfaceHandle hCal, uint32_t *pu32DutMode, uint32_t *pu32ModulationType,
                   int32_t *pi32CwOffsetKHz, uint32_t *pu32LoopbackTx)
{
    if (u32DeviceModeStackPointer == 0) {
        printf("ERROR: Device mode stack UNDERFLOW\n");
        return;
    }
    u32DeviceModeStackPointer--;
    const DeviceMode stMode = astDeviceModeStack[u32DeviceModeStackPointer];
    /* Re-applied even if the device is in that mode already, so a pop also
     * undoes a mode set directly after the matching push. */
    (void)Q7_SetDeviceMode(hCal, stMode.u32DutMode, stMode.u32ModulationType, stMode.i32CwOffsetKHz,
                           stMode.u32LoopbackTx);
    printf(TEXT_POP_FORMAT,
           (int)u32DeviceModeStackPointer, stMode.u32DutMode, stMode.u32ModulationType,
           (uint32_t)stMode.i32CwOffsetKHz, stMode.u32LoopbackTx);
    if (pu32DutMode != NULL)
        *pu32DutMode = stMode.u32DutMode;
    if (pu32ModulationType != NULL)
        *pu32ModulationType = stMode.u32ModulationType;
    if (pi32CwOffsetKHz != NULL)
        *pi32CwOffsetKHz = stMode.i32CwOffsetKHz;
    if (pu32LoopbackTx != NULL)
        *pu32LoopbackTx = stMode.u32LoopbackTx;
}

/* The pops set the mode without looking at the answer: read it back, and
 * say so when the device is not in the mode the run found it in. */
static void ConfirmDeviceMode(CalInterfaceHandle hCal, const DeviceMode *pstExpected)
{
    uint32_t u32DutMode = 0;
    uint32_t u32ModulationType = 0;
    int32_t i32CwOffsetKHz = 0;
    uint32_t u32LoopbackTx = 0;
    ApiStatus status = Q7_GetDeviceMode(hCal, &u32DutMode, &u32ModulationType, &i32CwOffsetKHz, &u32LoopbackTx);
    if (status != NULL) {
        PrintDeviceNotice(TEXT_MODE_NOT_RESTORED ": it could not be read back: %s\n", status);
        return;
    }
    if (u32DutMode != pstExpected->u32DutMode || u32ModulationType != pstExpected->u32ModulationType ||
        i32CwOffsetKHz != pstExpected->i32CwOffsetKHz || u32LoopbackTx != pstExpected->u32LoopbackTx)
        PrintDeviceNotice(TEXT_MODE_NOT_RESTORED ": mode = %u modulation = %u CW Offset=%u "
                          "LoopbackTX=%u\n",
                          u32DutMode, u32ModulationType, (uint32_t)i32CwOffsetKHz, u32LoopbackTx);
}

int AutomatedTest(CalInterfaceHandle hCal)
{
    static int (*const apfnGroupTests[])(CalInterfaceHandle) = {
        AutomatedConfigurationGroupTest, AutomatedRxGroupTest,           AutomatedTxGroupTest,
        AutomatedLoopbackGroupTest,      AutomatedOtherCommandGroupTest, AutomatedDSDManagementGroupTest,
        AutomatedDSDReadWriteGroupTest,
    };
    const uint32_t u32StackPointerAtStart = u32DeviceModeStackPointer;

    PushDeviceMode(hCal, 4, 1, 1000, 0); /* AGC free-run, 16 QAM */
    for (size_t i = 0; i < sizeof apfnGroupTests / sizeof apfnGroupTests[0]; i++) {
        (void)apfnGroupTests[i](hCal); /* a failing group never ends the run */
        PressEnterToContinue();
        /* The next group starts only after Enter: once the session is ending
         * (input ended, a stop signal) the remaining groups are abandoned. */
        if (SessionEnded()) {
            (void)AbandonCommand();
            break;
        }
    }
    /* Back to the mode the device had when the test began, also after a
     * group that was cut short with a mode of its own still pushed. */
    while (u32DeviceModeStackPointer > u32StackPointerAtStart)
        PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    ConfirmDeviceMode(hCal, &astDeviceModeStack[u32StackPointerAtStart]);
    return 0;
}

void PrintTestHeading(const char *sTitle)
{
    printf("\n" TEXT_TEST_SEPARATOR TEXT_TESTING "%s\n", sTitle);
}

bool ReportTestError(ApiStatus status)
{
    if (status == NULL)
        return false;
    printf("ERROR: %s\n", status);
    return true;
}

const char *Verdict(bool bPass)
{
    return bPass ? "PASS" : "FAIL";
}
