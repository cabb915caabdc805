/* The automated regression test: the device-mode stack, the driver and the
 * seven group tests it runs in a fixed order. Each group test prints its own
 * headings, the values it wrote and read back, and "PASS" or "FAIL" where a
 * read-back can be compared (exact equality, doubles too). */
#ifndef Q7_AUTOMATED_H
#define Q7_AUTOMATED_H

#include <stdbool.h>
#include <stdint.h>

#include "Q7CalAPI.h"

/* The four values of Q7_SetDeviceMode, as one record on the stack. */
typedef struct DeviceMode {
    uint32_t u32DutMode;        /* 0 Normal ... 5 Loopback */
    uint32_t u32ModulationType; /* 0 4 QAM, 1 16 QAM, 2 64 QAM */
    int32_t i32CwOffsetKHz;
    uint32_t u32LoopbackTx; /* 0 neither, 1 TX1, 2 TX2, 3 both */
} DeviceMode;

/* Record 0 is the base record (Normal, 0, 0, 0) and is never written; records
 * 1 to 15 hold pushed modes. The pointer indexes the top record: the mode the
 * stack last applied. Both live for the whole process. */
#define DEVICE_MODE_STACK_RECORDS 16u
extern DeviceMode astDeviceModeStack[DEVICE_MODE_STACK_RECORDS];
extern uint32_t u32DeviceModeStackPointer;

/* Sets the mode on the device and remembers it; prints the Push line, or the
 * OVERFLOW line and changes nothing when records 1 to 15 are all in use. */
void PushDeviceMode(CalInterfaceHandle hCal, uint32_t u32DutMode, uint32_t u32ModulationType,
                    int32_t i32CwOffsetKHz, uint32_t u32LoopbackTx);

/* Forgets the top mode and sets the device back to the record beneath, also
 * through the out-pointers that are not null; prints the Pop line, or the
 * UNDERFLOW line and changes nothing (out-values included) on an empty stack. */
void PopDeviceMode(CalInterfaceHandle hCal, uint32_t *pu32DutMode, uint32_t *pu32ModulationType,
                   int32_t *pi32CwOffsetKHz, uint32_t *pu32LoopbackTx);

/* The menu entry "Automated test": the seven group tests with a pause after
 * each, inside one pushed AGC free-run mode. Returns 0. */
int AutomatedTest(CalInterfaceHandle hCal);

/* The group tests, in the order the driver runs them. Each returns 0, or -1
 * where it stops early (loopback calibration, Rx spectrum reset). */
int AutomatedConfigurationGroupTest(CalInterfaceHandle hCal);
int AutomatedRxGroupTest(CalInterfaceHandle hCal);
int AutomatedTxGroupTest(CalInterfaceHandle hCal);
int AutomatedLoopbackGroupTest(CalInterfaceHandle hCal);
int AutomatedOtherCommandGroupTest(CalInterfaceHandle hCal);
int AutomatedDSDManagementGroupTest(CalInterfaceHandle hCal);
int AutomatedDSDReadWriteGroupTest(CalInterfaceHandle hCal);

/* Shared by the group tests. */

/* "\n------------- Testing <title>\n" */
void PrintTestHeading(const char *sTitle);
/* Prints "ERROR: %s\n" for a failed status; true when it did. */
bool ReportTestError(ApiStatus status);
/* "PASS" or "FAIL". */
const char *Verdict(bool bPass);

#endif /* Q7_AUTOMATED_H */
