/* The NVM mode test: the DSD is copied from a fixed offset into the device's
 * DSD buffer, then zeroed there from the same offset, and loaded from the
 * buffer after each step, so that the engineer sees the loaded DSD's block
 * validity and checksums follow the buffer. No verdict; the first failing
 * operation ends the test with nothing undone. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "diagnostics.h"
#include "printed_texts.h"

#define DSD_SIZE 32768u
#define READ_BACK_SIZE 128u
#define OFFSET_NON_MII 0x200u
#define OFFSET_MII 0x1000u
#define LOAD_FROM_NVM 1u
#define LOAD_FROM_BUFFER 2u
#define DUT_MODE_TX_CW 2u

/* The two whole-DSD images and the read-back area exist together for the
 * whole test. */
typedef struct {
    uint8_t au8SavedDsd[DSD_SIZE];
    uint8_t au8ZeroImage[DSD_SIZE];
    uint8_t au8ReadBack[READ_BACK_SIZE];
} NvmModeImages;

static void ShowChecksums(CalInterfaceHandle hCal)
{
    TestAreDSDChecksumsValid(hCal);
    TestGetDSDChecksums(hCal);
}

static bool LoadAndShowChecksums(CalInterfaceHandle hCal, const char *sLoadingMode, uint32_t u32LoadMode)
{
    printf("Calling Load DSD Into Memory (%s loading mode)\n", sLoadingMode);
    if (ReportError(Q7_LoadDSD(hCal, u32LoadMode)))
        return false;
    ShowChecksums(hCal);
    putchar('\n');
    return true;
}

/* Sets the NVM mode and reads it back: the writes that follow would go to the
 * NVM itself if the device stayed in mode 0. */
static bool SetNvmMode(CalInterfaceHandle hCal, uint32_t u32NvmMode)
{
    int32_t i32ReadMode = -1;

    puts("====================");
    printf("Setting NVM mode = %d\n", (int)u32NvmMode);
    puts("====================");
    if (ReportError(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, u32NvmMode)) ||
        ReportError(Q7_GetOptionByID(hCal, Q7_OPTION_NVM_MODE, &i32ReadMode)))
        return false;
    if (i32ReadMode != (int32_t)u32NvmMode) {
        printf("\nERROR: The device is in NVM mode %d after NVM mode %d was set\n", (int)i32ReadMode,
               (int)u32NvmMode);
        return false;
    }
    return true;
}

/* Reads the 128 bytes at the offset into the cleared read-back area and
 * dumps them. */
static bool ReadBackAndDump(CalInterfaceHandle hCal, uint8_t *pu8ReadBack, uint32_t u32Offset)
{
    memset(pu8ReadBack, 0, READ_BACK_SIZE);
    if (ReportError(Q7_ReadDSDBytes(hCal, pu8ReadBack, READ_BACK_SIZE, u32Offset)))
        return false;
    Q7_HexByteDump(pu8ReadBack, u32Offset, READ_BACK_SIZE);
    return true;
}

/* Writes the image from the offset to the end of the DSD with a fresh key
 * (its value is passed on unchecked), then reads the start back. */
static bool WriteFromOffsetAndReadBack(CalInterfaceHandle hCal, const uint8_t *pu8Image, uint8_t *pu8ReadBack,
                                       uint32_t u32Offset)
{
    uint32_t u32Written = 0;
    uint32_t u32Key = Q7_RequestDSDWriteKey(hCal);
    if (ReportError(Q7_WriteDSDBytes(hCal, u32Key, pu8Image + u32Offset, DSD_SIZE - u32Offset, u32Offset,
                                     &u32Written)))
        return false;
    printf("Wrote %d bytes\n", (int)u32Written);
    printf("Reading %d bytes at 0x%04X with CalAPI_rdm_block (from buffer)\n", (int)READ_BACK_SIZE, u32Offset);
    if (!ReadBackAndDump(hCal, pu8ReadBack, u32Offset))
        return false;
    putchar('\n');
    return true;
}

static int RunNvmModeTest(CalInterfaceHandle hCal, uint32_t u32InterfaceType, NvmModeImages *pImages)
{
    bool bMii = u32InterfaceType != 0;
    uint32_t u32Offset = bMii ? OFFSET_MII : OFFSET_NON_MII;
    uint32_t u32DutMode = 0, u32ModulationType = 0, u32LoopbackTx = 0;
    int32_t i32CwOffsetKHz = 0;

    printf("Running test for %s interface.\n", bMii ? "MII" : "non-MII");
    if (ReportError(Q7_GetDeviceMode(hCal, &u32DutMode, &u32ModulationType, &i32CwOffsetKHz, &u32LoopbackTx)))
        return -1;
    puts("Setting device mode to Tx CW");
    if (ReportError(Q7_SetDeviceMode(hCal, DUT_MODE_TX_CW, 0, i32CwOffsetKHz, u32LoopbackTx)))
        return -1;

    if (!SetNvmMode(hCal, 0))
        return -1;
    ShowChecksums(hCal);
    if (!LoadAndShowChecksums(hCal, "NVM", LOAD_FROM_NVM))
        return -1;

    puts("=======================================================");
    puts("Reading and saving all 32K of DSD into a buffer");
    puts("=======================================================");
    if (ReportError(Q7_ReadDSDBytes(hCal, pImages->au8SavedDsd, DSD_SIZE, 0)))
        return -1;
    printf("Reading %d bytes at 0x%04X with Cal3API_rdm_block (direct from NVM)\n", (int)READ_BACK_SIZE, u32Offset);
    if (!ReadBackAndDump(hCal, pImages->au8ReadBack, u32Offset))
        return -1;
    if (!LoadAndShowChecksums(hCal, "NVM", LOAD_FROM_NVM))
        return -1;

    if (!SetNvmMode(hCal, bMii ? 2 : 1))
        return -1;
    printf("PART 1: Copying NVM DSD contents to buffer at 1fb00008 (or bfb00008 for MII) starting with offset "
           "0x%04X\n",
           u32Offset);
    if (!WriteFromOffsetAndReadBack(hCal, pImages->au8SavedDsd, pImages->au8ReadBack, u32Offset))
        return -1;
    if (!LoadAndShowChecksums(hCal, "VDM", LOAD_FROM_BUFFER))
        return -1;

    printf("PART 2: Copying all zeroes to buffer at 1fb00000 (or bfb00008 for MII) starting with offset 0x%04X\n",
           u32Offset);
    memset(pImages->au8ZeroImage, 0, DSD_SIZE);
    if (!WriteFromOffsetAndReadBack(hCal, pImages->au8ZeroImage, pImages->au8ReadBack, u32Offset))
        return -1;
    if (!LoadAndShowChecksums(hCal, "VDM", LOAD_FROM_BUFFER))
        return -1;

    if (ReportError(Q7_SetDeviceMode(hCal, u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx)))
        return -1;
    return 0;
}

int NvmModeTest(CalInterfaceHandle hCal)
{
    uint32_t u32InterfaceType = 0;
    if (!ReadUnsigned(&u32InterfaceType, TEXT_NVM_MODE_QUESTION " (0=not MII; 1=MII): "))
        return -1;

    NvmModeImages *pImages = (NvmModeImages *)malloc(sizeof *pImages);
    if (pImages == NULL) {
        puts("\nERROR: Not enough memory for the NVM mode test");
        return -1;
    }
    int iResult = RunNvmModeTest(hCal, u32InterfaceType, pImages);
    free(pImages);
    return iResult;
}
