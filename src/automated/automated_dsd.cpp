/* The DSD group tests of the automated run. Both only read the DSD and give
 * no verdict: the engineer judges the output. */
#include <stdio.h>
#include <stdlib.h>

#include "automated.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "printed_texts.h"

#define TEST_BYTE_COUNT 256u
#define TEST_BYTE_ADDRESS 0x200u
#define FIRST_REGION_ID 1
#define LAST_REGION_ID 11
/* At most this many bytes of a region are dumped. */
#define REGION_DUMP_LIMIT 256u

/* Sixteen bytes to a line, each line led by "\n%04X: " with the offset of its
 * first byte; a newline after the last byte. */
static void DumpTestBytes(const uint8_t *pu8Data, uint32_t u32FirstOffset, uint32_t u32Count)
{
    for (uint32_t i = 0; i < u32Count; i++) {
        if (i % 16 == 0)
            printf("\n%04X: ", u32FirstOffset + i);
        printf("%02X ", pu8Data[i]);
    }
    printf("\n");
}

/* A buffer of the size, cleared so that a failed read dumps zeros rather than
 * stale memory; never a null pointer for a size of 0. */
static uint8_t *AllocateClearedBuffer(uint32_t u32Size)
{
    return (uint8_t *)calloc(u32Size != 0 ? u32Size : 1, 1);
}

int AutomatedDSDManagementGroupTest(CalInterfaceHandle hCal)
{
    printf("\n");
    PushDeviceMode(hCal, 2, 0, 1000, 0); /* Tx CW, 4 QAM */
    PrintTestHeading(TEXT_DSD_MANAGEMENT_GROUP);
    (void)TestLoadDSD(hCal); /* the run's one prompt besides the pauses */
    if (SessionEnded()) {
        PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
        return 0;
    }
    (void)TestIsDSDValid(hCal);
    (void)TestAreDSDChecksumsValid(hCal);
    (void)TestGetDSDChecksums(hCal);
    (void)TestIsCalibrationValid(hCal);
    (void)TestGetCalibrationInfo(hCal);
    PrintTestHeading(TEXT_MAC_ADDRESS_SECTION);
    (void)TestGetMACAddress(hCal);
    PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    return 0;
}

static void DumpTestBytesOfDsd(CalInterfaceHandle hCal)
{
    printf("Test block size = %d bytes\n", (int)TEST_BYTE_COUNT);
    uint8_t *pu8Data = AllocateClearedBuffer(TEST_BYTE_COUNT);
    if (pu8Data == NULL) {
        printf("Memory allocation failed.\n");
        return;
    }
    ReportTestError(Q7_ReadDSDBytes(hCal, pu8Data, TEST_BYTE_COUNT, TEST_BYTE_ADDRESS)); /* dumped anyway */
    DumpTestBytes(pu8Data, TEST_BYTE_ADDRESS, TEST_BYTE_COUNT);
    bfree(pu8Data);
}

static void DumpRegion(CalInterfaceHandle hCal, int32_t i32RegionID)
{
    /* A failed size query goes unreported and leaves the size at 0: the
     * region's read then reports what the device makes of it. */
    uint32_t u32Size = 0;
    uint32_t u32Returned = 0;

    (void)Q7_GetDSDRegionSizeByID(hCal, i32RegionID, &u32Size);
    printf("\nRegion ID = %d - Region size = %u bytes\n", i32RegionID, u32Size);
    uint8_t *pu8Data = AllocateClearedBuffer(u32Size);
    if (pu8Data == NULL) {
        printf("Memory allocation failed.\n");
        return;
    }
    ReportTestError(Q7_ReadDSDRegionByID(hCal, i32RegionID, u32Size, pu8Data, &u32Returned));
    printf("Read %u bytes\n", u32Returned);
    /* The dump shows the region's size, not the count read. */
    if (u32Size > REGION_DUMP_LIMIT) {
        u32Size = REGION_DUMP_LIMIT;
        printf("Printing only the first %u bytes\n", REGION_DUMP_LIMIT);
    }
    DumpTestBytes(pu8Data, 0, u32Size);
    bfree(pu8Data);
}

int AutomatedDSDReadWriteGroupTest(CalInterfaceHandle hCal)
{
    printf("\n");
    PrintTestHeading(TEXT_DSD_READ_WRITE_GROUP);
    DumpTestBytesOfDsd(hCal);
    PrintTestHeading(TEXT_REGION_READ_SECTION);
    for (int32_t i32RegionID = FIRST_REGION_ID; i32RegionID <= LAST_REGION_ID; i32RegionID++) {
        if (SessionEnded())
            return 0;
        DumpRegion(hCal, i32RegionID);
    }
    if (SessionEnded())
        return 0;
    (void)TestGetNVMSize(hCal);
    (void)TestGetDSDInfo(hCal);
    return 0;
}
