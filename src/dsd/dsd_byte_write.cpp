/* The byte writes: bytes from a data pattern at a DSD address, or into the
 * 64 KB Flash 2.x DSD image with its header block, verified (the image field
 * by field) and restored with a fresh key. */
#include <stdio.h>
#include <string.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "dsd_write_steps.h"
#include "printed_texts.h"

/* The Flash 2.x DSD image: 64 KB, its 1 KB header block at 63 KB holding
 * big-endian fields. */
#define FLASH2X_IMAGE_SIZE 65536u
#define FLASH2X_HEADER_OFFSET (63u * 1024u)
#define FLASH2X_SIZE_FIELD 0u
#define FLASH2X_PRIORITY_FIELD 8u
#define FLASH2X_MAGIC_FIELD 1020u
#define FLASH2X_MAGIC_NUMBER 0x7E1A0D5Du
#define FLASH2X_FILL_GAP 1u
#define FLASH2X_ERASED 0xFFu

/* What a byte write writes: u32Size bytes at the range's address, or, in a
 * Flash 2.x image, at the flash offset together with the header block. */
typedef struct ByteWrite {
    bool bFlash2x;
    uint32_t u32Size;
    uint32_t u32FlashOffset;
    uint32_t u32WriteMode;
    Flash2xBytesWithHeader stHeader;
} ByteWrite;

static void ShowBytesWritten(uint32_t u32Written) { printf("\nWrote %d bytes to dev data memory\n", (int)u32Written); }

/* Adds 4 errors when the big-endian header field differs from its value. */
static uint32_t CheckHeaderField(const uint8_t *pu8Image, uint32_t u32Field, uint32_t u32Expected,
                                 const char *sLabel)
{
    uint32_t u32Stored = 0;
    memcpy(&u32Stored, pu8Image + FLASH2X_HEADER_OFFSET + u32Field, sizeof u32Stored);
    uint32_t u32Read = FromBigEndianUINT32(u32Stored);
    if (u32Read == u32Expected)
        return 0;
    printf("%sRead back %08X - Expected %08X\n", sLabel, u32Read, u32Expected);
    return 4;
}

/* The whole image: untouched bytes before the data, the data, the gap, then
 * every field of the header block. */
static uint32_t CompareFlash2xImage(const DsdAreas *pAreas, const ByteWrite *pWrite)
{
    const uint8_t *pu8Read = pAreas->pu8ReadBack;
    uint32_t u32Offset = pWrite->u32FlashOffset;
    uint32_t u32End = u32Offset + pWrite->u32Size;
    uint32_t u32Errors = CompareBlocks(pu8Read, pAreas->pu8Original, 0, 0, u32Offset);

    u32Errors += CompareBlocks(pu8Read, pAreas->pu8Write, u32Offset, 0, pWrite->u32Size);
    if (u32End > FLASH2X_HEADER_OFFSET)
        puts("ERROR: Attempt to overwrite the Flash 2.x header block at offset = 63*1024");
    else if (pWrite->u32WriteMode == FLASH2X_FILL_GAP)
        u32Errors += CompareFill(pu8Read, u32End, FLASH2X_HEADER_OFFSET - u32End, FLASH2X_ERASED);
    else
        u32Errors += CompareBlocks(pu8Read, pAreas->pu8Original, u32End, u32End, FLASH2X_HEADER_OFFSET - u32End);

    u32Errors += CheckHeaderField(pu8Read, FLASH2X_SIZE_FIELD, pWrite->stHeader.u32DSDImageSize,
                                  "Header DSDImageSize verify error:        ");
    u32Errors += CompareFill(pu8Read, FLASH2X_HEADER_OFFSET + 4u, 4u, FLASH2X_ERASED);
    u32Errors += CheckHeaderField(pu8Read, FLASH2X_PRIORITY_FIELD, pWrite->stHeader.u32DSDImagePriority,
                                  "Header DSDImagePriority verify error:    ");
    u32Errors += CompareFill(pu8Read, FLASH2X_HEADER_OFFSET + 12u, 1008u, FLASH2X_ERASED);
    u32Errors += CheckHeaderField(pu8Read, FLASH2X_MAGIC_FIELD, FLASH2X_MAGIC_NUMBER,
                                  "Header DSDImageMagicNumber verify error: ");
    return u32Errors;
}

/* The write mode and the header values of a Flash 2.x image write. */
static bool ReadFlash2xParameters(ByteWrite *pWrite)
{
    uint32_t u32SizeKB = 0;
    uint32_t u32Priority = 10;

    puts("\nFlash 2.X write mode:");
    puts("    1 = Fill space between data block and DSD header with 0xFF");
    puts("    2 = Retain existing flash data between data block and DSD header\n");
    if (!ReadUnsigned(&pWrite->u32WriteMode, "    Enter write mode (1-2)     ? "))
        return false;
    puts("\nFlash 2.X DSD header information:");
    if (!ReadUnsigned(&u32SizeKB, "    DSD size in kB (1-63)      ? ") ||
        !ReadUnsigned(&u32Priority, "    DSD priority (0-10)        ? "))
        return false;
    pWrite->stHeader.u32Reserved = 0;
    pWrite->stHeader.u32DSDImageSize = u32SizeKB * 1024u;
    pWrite->stHeader.u32DSDImagePriority = u32Priority;
    return true;
}

/* Key, restore answer, original contents (always for a Flash 2.x image, which
 * the verification compares with them), pattern, write, verification and
 * restore. After verify errors the restore is withheld with the WARNING. */
static int WriteBytes(const DsdRange *pRange, const DsdAreas *pAreas, const ByteWrite *pWrite)
{
    uint32_t u32Key = 0;
    uint32_t u32Restore = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;
    uint32_t u32Errors = 0;
    ApiStatus status = NULL;
    bool bKeyRequested = false;

    if (!ReadWriteKey(pRange->hCal, &u32Key, &bKeyRequested))
        return -1;
    if (!ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return EndBeforeTheWrite(bKeyRequested);
    if (u32Restore != 0 || pWrite->bFlash2x) {
        if (!ReadOriginal(pRange, pAreas, &u32Returned))
            return EndBeforeTheWrite(bKeyRequested);
        printf("\nRead %d bytes from dev data memory\n", (int)pRange->u32Size);
    }
    if (!FillDataPattern(&gs_stByteElement, pAreas->pu8Write, pWrite->u32Size))
        return EndBeforeTheWrite(bKeyRequested);

    if (pWrite->bFlash2x)
        status = Q7_WriteFlash2xBytesWithHeader(pRange->hCal, u32Key, pAreas->pu8Write, pWrite->u32Size,
                                                pWrite->u32FlashOffset, &pWrite->stHeader, 3u, pWrite->u32WriteMode,
                                                &u32Written);
    else
        status = WriteRange(pRange, u32Key, pAreas->pu8Write, pRange->u32Size, &u32Written);
    if (ReportWriteError(status))
        return u32Restore != 0 ? LookAfterFailedWrite(pRange, pAreas, true, RESTORING_LINE, ShowBytesWritten) : -1;
    ShowBytesWritten(u32Written);

    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT)) {
        /* The session ends after the write: the restore asked for is still made. */
        if (u32Restore != 0)
            (void)RestoreAndConfirm(pRange, pAreas, RESTORING_LINE, ShowBytesWritten);
        return -1;
    }
    if (u32Verify != 0) {
        FillArea(pAreas->pu8ReadBack, pRange->u32Size, 0);
        status = ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned);
        printf("\nRead %d bytes from dev data memory\n", (int)pRange->u32Size);
        if (ReportReadError(status))
            return u32Restore != 0 ? WarnNotRestored("the verification read failed") : -1;
        if (pWrite->bFlash2x)
            u32Errors = CompareFlash2xImage(pAreas, pWrite);
        else
            u32Errors = CompareBlocks(pAreas->pu8ReadBack, pAreas->pu8Write, 0, 0, pWrite->u32Size);
        if (u32Restore != 0 && u32Errors != 0)
            PrintDeviceNotice("\n\n%u" TEXT_VERIFY_ERRORS "\n", u32Errors); /* the restore is withheld */
        else
            printf("\n\n%u" TEXT_VERIFY_ERRORS "\n", u32Errors);
    }
    if (u32Restore != 0 && u32Errors != 0)
        return WarnNotRestored("verify error count > 0");
    if (u32Restore != 0 && RestoreAndConfirm(pRange, pAreas, RESTORING_LINE, ShowBytesWritten) != 0)
        return -1;
    return u32Errors == 0 ? 0 : -1;
}

int Q7_WriteDSDBytesEx(CalInterfaceHandle hCal, uint32_t u32Flash2x)
{
    DsdRange stRange = {hCal, false, 0, 0, 0};
    ByteWrite stWrite = {};
    DsdAreas stAreas;
    int32_t i32NvmMode = 0;
    uint32_t u32Address = 0;

    if (!BeginWithNvmMode(hCal, "\nWrite DSD Bytes:", &i32NvmMode))
        return -1;
    printf("    NVM mode is %d\n\n", (int)i32NvmMode);
    puts("Bytes to be written:");
    stWrite.bFlash2x = u32Flash2x != 0;
    if (!ReadHex(&u32Address, "%s",
                 stWrite.bFlash2x ? "    Flash memory offset (hex) ? " : "    DSD address (hex) ? ") ||
        !ReadUnsigned(&stWrite.u32Size, "    Size in bytes (dec)       ? "))
        return -1;
    stWrite.u32WriteMode = FLASH2X_FILL_GAP;
    if (stWrite.bFlash2x) {
        if (!ReadFlash2xParameters(&stWrite))
            return -1;
        /* The data block must lie inside the image that the write area holds. */
        if ((uint64_t)u32Address + stWrite.u32Size > FLASH2X_IMAGE_SIZE) {
            printf("\nERROR: Flash offset 0x%X + size %u bytes goes beyond the %u-byte DSD image\n", u32Address,
                   stWrite.u32Size, FLASH2X_IMAGE_SIZE);
            return -1;
        }
        stWrite.u32FlashOffset = u32Address;
        stRange.u32Size = FLASH2X_IMAGE_SIZE; /* the whole image, from address 0 */
    } else {
        stRange.u32Address = u32Address;
        stRange.u32Size = stWrite.u32Size;
    }
    if (!AllocateAreas(&stAreas, stRange.u32Size))
        return -1;
    int iResult = WriteBytes(&stRange, &stAreas, &stWrite);
    ReleaseAreas(&stAreas);
    return iResult;
}

int TestWriteDSDBytes(CalInterfaceHandle hCal)
{
    if (Q7_WriteDSDBytesEx(hCal, 0) != 0)
        return -1;
    return ReportSuccess("TestWriteDSDBytes");
}

int TestWriteFlash2xBytesWithHeader(CalInterfaceHandle hCal)
{
    if (Q7_WriteDSDBytesEx(hCal, 1) != 0)
        return -1;
    return ReportSuccess("TestWriteFlash2xBytesWithHeader");
}
