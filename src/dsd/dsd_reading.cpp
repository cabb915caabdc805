/* DSD reading commands: words and bytes at a DSD address, and regions by ID.
 * Each read goes into one heap buffer sized to the request, released before
 * the command returns. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "dsd_limits.h"

/* The largest word count whose byte count fits 32 bits. */
#define MAX_BLOCK_WORDS (UINT32_MAX / 4u)

bool BlockSizeFits(uint32_t u32WordCount)
{
    if ((uint64_t)u32WordCount * 4u <= UINT32_MAX)
        return true;
    printf("\nERROR: Block size of %u words is too large (at most %u)\n", u32WordCount, MAX_BLOCK_WORDS);
    return false;
}

/* Reads the bytes at the DSD address into a buffer of exactly that size and
 * dumps them with their DSD addresses. */
static int ReadAndDump(CalInterfaceHandle hCal, uint32_t u32ByteCount, uint32_t u32Address,
                       const char *sAllocationError, const char *sName)
{
    uint8_t *pu8Data = NULL;

    if (u32ByteCount != 0) {
        pu8Data = (uint8_t *)malloc(u32ByteCount);
        if (pu8Data == NULL) {
            puts(sAllocationError);
            return -1;
        }
    }
    if (ReportError(Q7_ReadDSDBytes(hCal, pu8Data, u32ByteCount, u32Address))) {
        bfree(pu8Data);
        return -1;
    }
    puts("\n\nResults returned:");
    Q7_HexByteDump(pu8Data, u32Address, u32ByteCount);
    bfree(pu8Data);
    return ReportSuccess(sName);
}

int TestReadDSDBlock(CalInterfaceHandle hCal)
{
    uint32_t u32Address = 0;
    uint32_t u32WordCount = 0;

    if (!BeginCommand(hCal, "\nRead DSD Data Block:"))
        return -1;
    puts("\nNote: Block size is the number of unsigned integers .");
    if (!ReadHex(&u32Address, "    DSD  address (hex) ? ") ||
        !ReadUnsigned(&u32WordCount, "    Block size (dec)          ? "))
        return -1;
    if (!BlockSizeFits(u32WordCount))
        return -1;
    return ReadAndDump(hCal, u32WordCount * 4u, u32Address, "\nERROR: Data block memory allocation failed",
                       "ReadDSDBlock");
}

int TestReadDSDBytes(CalInterfaceHandle hCal)
{
    uint32_t u32Address = 0;
    uint32_t u32ByteCount = 0;

    if (!BeginCommand(hCal, "\nRead DSD Bytes:"))
        return -1;
    puts("\nNote: Block size is the number of bytes.");
    if (!ReadHex(&u32Address, "    DSD address (hex) ? ") ||
        !ReadUnsigned(&u32ByteCount, "    Byte size (dec)          ? "))
        return -1;
    return ReadAndDump(hCal, u32ByteCount, u32Address, "\nERROR: Data  memory allocation failed", "ReadDSDBytes");
}

int TestGetDSDRegionSizeByID(CalInterfaceHandle hCal)
{
    int32_t i32RegionID = 0;
    uint32_t u32Size = 0;

    if (!BeginCommand(hCal, "\nGetDSDRegionSizeByID:"))
        return -1;
    if (!ReadSigned(&i32RegionID, "Enter region ID (dec) ? "))
        return -1;
    if (ReportError(Q7_GetDSDRegionSizeByID(hCal, i32RegionID, &u32Size)))
        return -1;
    printf("    DSD region size = %d bytes\n", (int)u32Size);
    return ReportSuccess("GetDSDRegionSizeByID");
}

int TestReadDSDRegionByID(CalInterfaceHandle hCal)
{
    int32_t i32RegionID = 0;
    uint32_t u32Size = 0;
    uint32_t u32Returned = 0;
    uint8_t *pu8Data = NULL;

    if (!BeginCommand(hCal, "\nReadDSDRegionByID:"))
        return -1;
    if (!ReadSigned(&i32RegionID, "Enter region ID (dec) ? "))
        return -1;
    if (ReportError(Q7_GetDSDRegionSizeByID(hCal, i32RegionID, &u32Size)))
        return -1;
    printf("\nDSD region size = %d bytes\n", (int)u32Size);
    if (u32Size != 0) {
        pu8Data = (uint8_t *)malloc(u32Size);
        if (pu8Data == NULL) {
            puts("\nERROR: Data block memory allocation failed");
            return -1;
        }
    }
    if (ReportError(Q7_ReadDSDRegionByID(hCal, i32RegionID, u32Size, pu8Data, &u32Returned))) {
        bfree(pu8Data);
        return -1;
    }
    /* Never dump beyond the buffer, whatever count comes back. */
    Q7_HexByteDump(pu8Data, 0, u32Returned < u32Size ? u32Returned : u32Size);
    bfree(pu8Data);
    return ReportSuccess("ReadDSDRegionByID");
}
