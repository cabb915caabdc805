/* The write key and the block write: 32-bit words from a data pattern at a
 * DSD address, verified word by word and restored with a fresh key. */
#include <stdio.h>
#include <string.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "dsd_limits.h"
#include "dsd_write_steps.h"
#include "printed_texts.h"

#define BLOCK_RESTORING_LINE "\nRestoring original DSD  values ... "

int TestRequestDSDWriteKey(CalInterfaceHandle hCal)
{
    if (hCal == NULL)
        return -1;
    uint32_t u32Key = Q7_RequestDSDWriteKey(hCal);
    puts("\nRequest DSD Write Key:");
    printf("    New DSD key is %08X\n", u32Key);
    if (u32Key != 0)
        return ReportSuccess("RequestDSDWriteKey");
    printf("RequestDSDWriteKey operation FAILED with return value %d.\n", (int)u32Key);
    return -1;
}

static uint32_t WordAt(const uint8_t *pu8Area, uint32_t i)
{
    uint32_t u32Word = 0;
    memcpy(&u32Word, pu8Area + 4u * (size_t)i, sizeof u32Word);
    return u32Word;
}

static void ShowRestoredWords(uint32_t u32Written)
{
    printf("\n    Number of 32-bit words actually written = %u\n", u32Written / 4u);
}

/* One line for each word read back different from the word written; returns
 * their count. */
static uint32_t CompareWords(const DsdRange *pRange, const DsdAreas *pAreas)
{
    uint32_t u32Errors = 0;
    for (uint32_t i = 0; i < pRange->u32Size / 4u; i++) {
        uint32_t u32Wrote = WordAt(pAreas->pu8Write, i);
        uint32_t u32Read = WordAt(pAreas->pu8ReadBack, i);
        if (u32Read != u32Wrote) {
            printf("\n%08X: Wrote %08X - Read back %08X - Verify ERROR", pRange->u32Address + 4u * i, u32Wrote,
                   u32Read);
            u32Errors++;
        }
    }
    return u32Errors;
}

/* Key, restore answer, original contents, pattern, write, verification and
 * restore. After verify errors the restore is withheld, and the errors are
 * what is said. */
static int WriteBlock(const DsdRange *pRange, const DsdAreas *pAreas)
{
    uint32_t u32Key = 0;
    uint32_t u32Restore = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;
    uint32_t u32Errors = 0;
    bool bKeyRequested = false;

    if (!ReadWriteKey(pRange->hCal, &u32Key, &bKeyRequested))
        return -1;
    if (!ReadUnsigned(&u32Restore, RESTORE_PROMPT) || (u32Restore != 0 && !ReadOriginal(pRange, pAreas, &u32Returned)) ||
        !FillDataPattern(&gs_stWordElement, pAreas->pu8Write, pRange->u32Size / 4u))
        return EndBeforeTheWrite(bKeyRequested);

    if (ReportWriteError(WriteRange(pRange, u32Key, pAreas->pu8Write, pRange->u32Size, &u32Written)))
        return u32Restore != 0
                   ? LookAfterFailedWrite(pRange, pAreas, true, BLOCK_RESTORING_LINE, ShowRestoredWords)
                   : -1;
    printf("\nNumber of 32-bit words actually written = %u\n", u32Written / 4u);

    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT)) {
        /* The session ends after the write: the restore asked for is still made. */
        if (u32Restore != 0)
            (void)RestoreAndConfirm(pRange, pAreas, BLOCK_RESTORING_LINE, ShowRestoredWords);
        return -1;
    }
    if (u32Verify != 0) {
        FillArea(pAreas->pu8ReadBack, pRange->u32Size, 0);
        if (ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned)))
            return u32Restore != 0 ? WarnNotRestored("the verification read failed") : -1;
        u32Errors = CompareWords(pRange, pAreas);
        if (u32Restore != 0 && u32Errors != 0)
            PrintDeviceNotice("\n%u" TEXT_VERIFY_ERRORS "\n", u32Errors); /* the restore is withheld */
        else
            printf("\n%u" TEXT_VERIFY_ERRORS "\n", u32Errors);
    }
    if (u32Restore != 0 && u32Errors == 0 &&
        RestoreAndConfirm(pRange, pAreas, BLOCK_RESTORING_LINE, ShowRestoredWords) != 0)
        return -1;
    return u32Errors == 0 ? 0 : -1;
}

int TestWriteDSDBlock(CalInterfaceHandle hCal)
{
    DsdRange stRange = {hCal, false, 0, 0, 0};
    DsdAreas stAreas;
    int32_t i32NvmMode = 0;
    uint32_t u32WordCount = 0;

    if (!BeginWithNvmMode(hCal, "\nWrite DSD Block:", &i32NvmMode))
        return -1;
    puts("\nNote: Block size is the number of 32-bit unsigned integers (not bytes).");
    printf("    NVM mode is %d\n", (int)i32NvmMode);
    if (!ReadHex(&stRange.u32Address, "   DSD address (hex) ? ") ||
        !ReadUnsigned(&u32WordCount, "    Block size (dec)          ? "))
        return -1;
    if (!BlockSizeFits(u32WordCount))
        return -1;
    stRange.u32Size = u32WordCount * 4u;
    if (!AllocateAreas(&stAreas, stRange.u32Size))
        return -1;
    int iResult = WriteBlock(&stRange, &stAreas);
    ReleaseAreas(&stAreas);
    return iResult == 0 ? ReportSuccess("WriteDSDBlock") : -1;
}
