/* The region write: random bytes over a DSD region named by its ID (region 4
 * keeps its first bytes), verified against the data and the zeros after it,
 * then restored with a fresh key if the engineer asks, whatever the
 * verification found. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "dsd_write_steps.h"
#include "printed_texts.h"

/* The calibration record's leading bytes that a write of region 4 keeps. */
#define CAL_REGION_ID 4
#define CAL_REGION_KEPT_BYTES 3u

/* More than any region holds: the whole DSD. A read with this much room
 * tells the region's length, whatever the size query answered. */
#define REGION_READ_CAPACITY 32768u

static void ShowRestoredRegionBytes(uint32_t u32Written)
{
    printf("\n    Number of bytes actually written = %u\n", u32Written);
}

/* The region's length as a read with room to spare returns it. False after
 * the error line when the read fails or disagrees with the size query:
 * writing, verifying and restoring fewer bytes than the region holds would
 * leave the rest of it zeroed. */
static bool RegionSizeConfirmed(const DsdRange *pRange)
{
    uint32_t u32Returned = 0;
    uint8_t *pu8Probe = (uint8_t *)malloc(REGION_READ_CAPACITY);
    if (pu8Probe == NULL) {
        puts("\nERROR: Data block memory allocation failed");
        return false;
    }
    ApiStatus status =
        Q7_ReadDSDRegionByID(pRange->hCal, pRange->i32RegionID, REGION_READ_CAPACITY, pu8Probe, &u32Returned);
    bfree(pu8Probe);
    if (ReportReadError(status))
        return false;
    if (u32Returned != pRange->u32Size) {
        printf("\nERROR: The region's size query answered %u bytes and its read %u bytes: nothing was written\n",
               pRange->u32Size, u32Returned);
        return false;
    }
    return true;
}

/* The bytes written read back as written, the rest of the region as 0: one
 * line for each byte that does not; returns their count. */
static uint32_t CompareRegion(const DsdRange *pRange, const DsdAreas *pAreas, uint32_t u32ToWrite)
{
    uint32_t u32Errors = 0;
    for (uint32_t i = 0; i < pRange->u32Size; i++) {
        uint8_t u8Expected = i < u32ToWrite ? pAreas->pu8Write[i] : 0;
        if (pAreas->pu8ReadBack[i] != u8Expected) {
            printf("\n%08X: Wrote %02X - Read back %02X - Verify ERROR", i, u8Expected, pAreas->pu8ReadBack[i]);
            u32Errors++;
        }
    }
    return u32Errors;
}

/* Original contents, the count to write, the random data (region 4 keeps its
 * first bytes), write, verification, and then the restore question, whose
 * restore is made whatever the verification found. */
static int WriteRegion(const DsdRange *pRange, const DsdAreas *pAreas, uint32_t u32Key, bool bKeyRequested)
{
    uint32_t u32ToWrite = 0;
    uint32_t u32Kept = 0;
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Restore = 0;
    uint32_t u32Errors = 0;

    if (!ReadOriginal(pRange, pAreas, &u32Returned))
        return EndBeforeTheWrite(bKeyRequested);
    printf("\nNumber of bytes returned by ReadDSDRegionByID = %u bytes\n", u32Returned);
    if (!ReadUnsigned(&u32ToWrite, "\nNumber of bytes to write (<= %d): ", (int)pRange->u32Size))
        return EndBeforeTheWrite(bKeyRequested);
    if (u32ToWrite > pRange->u32Size)
        u32ToWrite = pRange->u32Size;
    if (pRange->i32RegionID == CAL_REGION_ID) {
        /* A region shorter than those bytes keeps what it holds. */
        u32Kept = pRange->u32Size < CAL_REGION_KEPT_BYTES ? pRange->u32Size : CAL_REGION_KEPT_BYTES;
        printf("\nLeaving the first %d bytes unchanged.\n", (int)u32Kept);
        if (u32Kept != 0)
            memcpy(pAreas->pu8Write, pAreas->pu8Original, u32Kept);
    }
    printf("Writing random data = %u bytes\n", u32ToWrite > u32Kept ? u32ToWrite - u32Kept : 0u);
    for (uint32_t i = u32Kept; i < u32ToWrite; i++)
        pAreas->pu8Write[i] = (uint8_t)rand();

    if (ReportWriteError(WriteRange(pRange, u32Key, pAreas->pu8Write, u32ToWrite, &u32Written)))
        return LookAfterFailedWrite(pRange, pAreas, false, RESTORING_LINE, ShowRestoredRegionBytes);
    printf("\nNumber of bytes actually written by WriteDSDRegionByID = %u\n", u32Written);

    /* The session ending before the restore question leaves the data written. */
    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT))
        return WarnNotRestored("%s", WhyCommandEnded());
    if (u32Verify != 0) {
        FillArea(pAreas->pu8ReadBack, pRange->u32Size, 0);
        if (ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned)))
            return WarnNotRestored("the verification read failed");
        printf("\nNumber of bytes returned by ReadDSDRegionByID = %u bytes\n", u32Returned);
        u32Errors = CompareRegion(pRange, pAreas, u32ToWrite);
        printf("\n\n%u" TEXT_VERIFY_ERRORS "\n", u32Errors);
    }
    if (!ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return WarnNotRestored("%s", WhyCommandEnded());
    if (u32Restore != 0 && RestoreAndConfirm(pRange, pAreas, RESTORING_LINE, ShowRestoredRegionBytes) != 0)
        return -1;
    return u32Errors == 0 ? 0 : -1;
}

int TestWriteDSDRegionByID(CalInterfaceHandle hCal)
{
    DsdRange stRange = {hCal, true, 0, 0, 0};
    DsdAreas stAreas;
    uint32_t u32Key = 0;
    bool bKeyRequested = false;

    if (!BeginCommand(hCal, "\nWriteDSDRegionSizeByID:"))
        return -1;
    if (!ReadSigned(&stRange.i32RegionID, "Enter region ID (dec)             ? ") ||
        !ReadWriteKey(hCal, &u32Key, &bKeyRequested))
        return -1;
    if (ReportError(Q7_GetDSDRegionSizeByID(hCal, stRange.i32RegionID, &stRange.u32Size)))
        return EndBeforeTheWrite(bKeyRequested);
    printf("\nDSD region size = %d bytes\n", (int)stRange.u32Size);
    if (!RegionSizeConfirmed(&stRange) || !AllocateAreas(&stAreas, stRange.u32Size))
        return EndBeforeTheWrite(bKeyRequested);
    int iResult = WriteRegion(&stRange, &stAreas, u32Key, bKeyRequested);
    ReleaseAreas(&stAreas);
    return iResult == 0 ? ReportSuccess("WriteDSDRegionByID") : -1;
}
