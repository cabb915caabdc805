/* DSD Read/Write Commands that write: the write key, the block write, the byte
 * and Flash 2.x image writes, and the region write.
 *
 * Each write reads top to bottom in its own step order: the key, the original
 * contents, the data pattern, the write and the count written, an optional
 * verification into a cleared read-back area that reports every difference,
 * and an optional restore of the original contents with a fresh key. They
 * share the small steps below. Each command keeps one working buffer of three
 * equal areas (original, write, read-back), allocated after its sizes were
 * checked and released on every path.
 *
 * Nothing changes silently: once the data write has changed the device, every
 * way the command ends leaves the original contents back where a restore was
 * asked for, or says that they are not ("WARNING: Original data not restored,
 * because ..."), or prints the error of the write that failed. The original
 * contents are read twice and must agree before anything is written, and a
 * restore counts only when the range reads back as the original. */
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "data_utils.h"
#include "dsd_limits.h"

#define VERIFY_PROMPT "\n    Verify write     (1=yes/0=no) ? "
#define RESTORE_PROMPT "\n    Restore contents (1=yes/0=no) ? "
#define RESTORING_LINE "\nRestoring original DSD values ... "
#define ALLOCATION_FAILED_LINE "\nERROR: Data block memory allocation failed"

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

/* The calibration record's leading bytes that a write of region 4 keeps. */
#define CAL_REGION_ID 4
#define CAL_REGION_KEPT_BYTES 3u

/* Far more than any DSD holds: a larger write is a typing slip, and filling
 * and clearing gigabytes of areas would hold the console for minutes before
 * the device refused it. */
#define MAX_WRITE_AREA_SIZE (16u * 1024u * 1024u)

/* What a verification reads and a restore writes back: u32Size bytes at a DSD
 * address, or a whole region. */
typedef struct DsdRange {
    CalInterfaceHandle hCal;
    bool bRegion;
    int32_t i32RegionID; /* a region's */
    uint32_t u32Address; /* a range's at an address */
    uint32_t u32Size;
} DsdRange;

/* One allocation of three equal areas of the range's size. */
typedef struct DsdAreas {
    uint8_t *pu8Original;
    uint8_t *pu8Write;
    uint8_t *pu8ReadBack;
} DsdAreas;

/* ---- Steps that the writes share --------------------------------------- */

static bool ReportReadError(ApiStatus status)
{
    if (status == NULL)
        return false;
    printf("\nREAD ERROR: %s\n", status);
    return true;
}

static bool ReportWriteError(ApiStatus status)
{
    if (status == NULL)
        return false;
    printf("\nWRITE ERROR: %s\n", status);
    return true;
}

/* "WARNING: Original data not restored, because <reason>." Also on stderr
 * once standard output has failed, where the engineer can still see it.
 * Returns -1, the result of the command that gives up. */
__attribute__((format(printf, 1, 2))) static int WarnNotRestored(const char *sReasonFormat, ...)
{
    char sReason[160];
    va_list args;
    va_start(args, sReasonFormat);
    vsnprintf(sReason, sizeof sReason, sReasonFormat, args);
    va_end(args);
    printf("\nWARNING: Original data not restored, because %s.\n", sReason);
    if (fflush(stdout) != 0 || ferror(stdout))
        fprintf(stderr, "q7cal: WARNING: Original data not restored, because %s.\n", sReason);
    return -1;
}

/* Carves the three areas out of one allocation; none for a size of 0. False
 * after the error line. */
static bool AllocateAreas(DsdAreas *pAreas, uint32_t u32Size)
{
    memset(pAreas, 0, sizeof *pAreas);
    if (u32Size == 0)
        return true;
    if (u32Size > MAX_WRITE_AREA_SIZE) {
        printf("\nERROR: A write of %u bytes is larger than any DSD (at most %u)\n", u32Size, MAX_WRITE_AREA_SIZE);
        return false;
    }
    uint8_t *pu8Buffer = (uint8_t *)malloc(3u * (size_t)u32Size);
    if (pu8Buffer == NULL) {
        puts(ALLOCATION_FAILED_LINE);
        return false;
    }
    pAreas->pu8Original = pu8Buffer;
    pAreas->pu8Write = pu8Buffer + u32Size;
    pAreas->pu8ReadBack = pu8Buffer + 2u * (size_t)u32Size;
    return true;
}

static void ReleaseAreas(DsdAreas *pAreas)
{
    bfree(pAreas->pu8Original);
    memset(pAreas, 0, sizeof *pAreas);
}

/* Fills an area before a read, so that a byte the read does not deliver
 * shows: as 0 to a verification, or as a value that cannot pass for the
 * original. */
static void FillArea(uint8_t *pu8Area, uint32_t u32Size, uint8_t u8Value)
{
    if (u32Size != 0)
        memset(pu8Area, u8Value, u32Size);
}

/* The two areas hold the same bytes. */
static bool SameBytes(const uint8_t *pu8A, const uint8_t *pu8B, uint32_t u32Size)
{
    return u32Size == 0 || memcmp(pu8A, pu8B, u32Size) == 0;
}

/* Reads the whole range; *pu32Returned is the count read (a byte read does
 * not say, and counts as whole). */
static ApiStatus ReadRange(const DsdRange *pRange, uint8_t *pu8Dest, uint32_t *pu32Returned)
{
    *pu32Returned = 0;
    if (pRange->bRegion)
        return Q7_ReadDSDRegionByID(pRange->hCal, pRange->i32RegionID, pRange->u32Size, pu8Dest, pu32Returned);
    *pu32Returned = pRange->u32Size;
    return Q7_ReadDSDBytes(pRange->hCal, pu8Dest, pRange->u32Size, pRange->u32Address);
}

/* Writes the whole range from the source with the key. */
static ApiStatus WriteRange(const DsdRange *pRange, uint32_t u32Key, const uint8_t *pu8Source, uint32_t *pu32Written)
{
    *pu32Written = 0;
    if (pRange->bRegion)
        return Q7_WriteDSDRegionByID(pRange->hCal, u32Key, pRange->i32RegionID, pRange->u32Size, pu8Source,
                                     pu32Written);
    return Q7_WriteDSDBytes(pRange->hCal, u32Key, pu8Source, pRange->u32Size, pRange->u32Address, pu32Written);
}

/* The original contents, read twice, into the original area (cleared first)
 * and into the read-back area (filled with 0xFF first): a read that comes
 * back short or with a changed byte cannot agree with the other, and is
 * never written back. False after the error line; nothing has been written. */
static bool ReadOriginal(const DsdRange *pRange, const DsdAreas *pAreas)
{
    uint8_t *apu8Reads[2] = {pAreas->pu8Original, pAreas->pu8ReadBack};
    const uint8_t au8Fill[2] = {0x00, 0xFF};

    for (int i = 0; i < 2; i++) {
        uint32_t u32Returned = 0;
        FillArea(apu8Reads[i], pRange->u32Size, au8Fill[i]);
        if (ReportReadError(ReadRange(pRange, apu8Reads[i], &u32Returned)))
            return false;
        if (u32Returned < pRange->u32Size) {
            printf("\nERROR: Only %u of the %u bytes of the original contents could be read: nothing was written\n",
                   u32Returned, pRange->u32Size);
            return false;
        }
    }
    if (!SameBytes(pAreas->pu8Original, pAreas->pu8ReadBack, pRange->u32Size)) {
        puts("\nERROR: The original contents read differently twice: nothing was written");
        return false;
    }
    return true;
}

/* The restore: the restoring line, a fresh key whatever the data write used,
 * the original area written back over the range and the count line. Then the
 * range is read back into the read-back area (filled with the complement of
 * the original, so that nothing unread passes) and compared with the original
 * in silence. 0 when the range holds the original contents again; -1 after
 * the WRITE ERROR or the WARNING that says why it may not. */
static int RestoreAndConfirm(const DsdRange *pRange, const DsdAreas *pAreas, const char *sRestoringLine,
                              void (*pfnShowWritten)(uint32_t u32Written))
{
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;

    puts(sRestoringLine);
    uint32_t u32FreshKey = Q7_RequestDSDWriteKey(pRange->hCal);
    if (ReportWriteError(WriteRange(pRange, u32FreshKey, pAreas->pu8Original, &u32Written)))
        return -1;
    pfnShowWritten(u32Written);
    if (u32Written < pRange->u32Size)
        return WarnNotRestored("the restore wrote %u of %u bytes", u32Written, pRange->u32Size);

    for (uint32_t i = 0; i < pRange->u32Size; i++)
        pAreas->pu8ReadBack[i] = (uint8_t)~pAreas->pu8Original[i];
    if (ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned)))
        return WarnNotRestored("the restored data could not be read back");
    if (u32Returned < pRange->u32Size || !SameBytes(pAreas->pu8ReadBack, pAreas->pu8Original, pRange->u32Size))
        return WarnNotRestored("the restored data did not read back");
    return 0;
}

/* A null handle ends the command with no output; otherwise the NVM mode
 * (library option 7, shown only; its status is not examined, 0 if it fails)
 * is read and the heading printed. */
static bool BeginWithNvmMode(CalInterfaceHandle hCal, const char *sHeading, int32_t *pi32NvmMode)
{
    if (hCal == NULL)
        return false;
    *pi32NvmMode = 0;
    (void)Q7_GetOptionByID(hCal, Q7_OPTION_NVM_MODE, pi32NvmMode);
    return BeginCommand(hCal, sHeading);
}

/* The key of the data write: from the device for an answer of exactly 1 (a
 * refused request gives 0, which the write then refuses), else typed. */
static bool ReadWriteKey(CalInterfaceHandle hCal, uint32_t *pu32Key)
{
    uint32_t u32Auto = 0;

    if (!ReadUnsigned(&u32Auto, "\n    Auto DSD key (1=yes/0=no) ? "))
        return false;
    if (u32Auto == 1) {
        *pu32Key = Q7_RequestDSDWriteKey(hCal);
        return true;
    }
    return ReadHex(pu32Key, "    DSD Key (hex)     ? ");
}

/* ---- Data patterns ----------------------------------------------------- */

/* A data pattern fills 32-bit words (block write) or bytes (byte writes). */
typedef struct PatternElement {
    uint32_t u32Size;          /* 4 or 1 */
    const char *sUserWord;     /* "Value" or "Byte" in the user pattern's prompts */
    uint32_t (*pfnRandom)(void);
} PatternElement;

static uint32_t RandomByte(void) { return (uint32_t)rand(); }

static const PatternElement gs_stWordElement = {4u, "Value", Q7_rand32};
static const PatternElement gs_stByteElement = {1u, "Byte", RandomByte};

/* Stores element i; a byte keeps the value's low 8 bits. */
static void StoreElement(const PatternElement *pElement, uint8_t *pu8Area, uint32_t i, uint32_t u32Value)
{
    if (pElement->u32Size == 4u)
        memcpy(pu8Area + 4u * (size_t)i, &u32Value, sizeof u32Value);
    else
        pu8Area[i] = (uint8_t)u32Value;
}

/* Asks for a pattern until the selection is valid and fills u32Count
 * elements of the area with it; false at end of input. */
static bool FillDataPattern(const PatternElement *pElement, uint8_t *pu8Area, uint32_t u32Count)
{
    uint32_t u32Selection = 255;
    uint32_t u32Value = 0;
    uint32_t u32Increment = 0;

    while (u32Selection > 3) {
        if (!ReadUnsigned(&u32Selection, "\n    Data pattern (0=user 1=random 2=increment 3=constant) ? "))
            return false;
        if (u32Selection > 3)
            printf("ERROR: Invalid selection = %d\n", (int)u32Selection);
    }
    switch (u32Selection) {
    case 0:
        for (uint32_t i = 0; i < u32Count; i++) {
            if (!ReadHex(&u32Value, "    %s %u of %u (hex) ? ", pElement->sUserWord, i + 1, u32Count))
                return false;
            StoreElement(pElement, pu8Area, i, u32Value);
        }
        break;
    case 1:
        for (uint32_t i = 0; i < u32Count; i++)
            StoreElement(pElement, pu8Area, i, pElement->pfnRandom());
        break;
    case 2:
        if (!ReadHex(&u32Value, "    Starting value (hex) ? ") || !ReadHex(&u32Increment, "    Increment      (hex) ? "))
            return false;
        for (uint32_t i = 0; i < u32Count; i++)
            StoreElement(pElement, pu8Area, i, u32Value + i * u32Increment);
        break;
    default:
        if (!ReadHex(&u32Value, "    Constant value (hex) ? "))
            return false;
        for (uint32_t i = 0; i < u32Count; i++)
            StoreElement(pElement, pu8Area, i, u32Value);
        break;
    }
    return true;
}

/* ---- Request key and block write --------------------------------------- */

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
    const char *sRestoringLine = "\nRestoring original DSD  values ... ";
    uint32_t u32Key = 0;
    uint32_t u32Restore = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;
    uint32_t u32Errors = 0;

    if (!ReadWriteKey(pRange->hCal, &u32Key) || !ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return -1;
    if (u32Restore != 0 && !ReadOriginal(pRange, pAreas))
        return -1;
    if (!FillDataPattern(&gs_stWordElement, pAreas->pu8Write, pRange->u32Size / 4u))
        return -1;

    if (ReportWriteError(WriteRange(pRange, u32Key, pAreas->pu8Write, &u32Written)))
        return -1;
    printf("\nNumber of 32-bit words actually written = %u\n", u32Written / 4u);

    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT)) {
        /* The session ends after the write: the restore asked for is still made. */
        if (u32Restore != 0)
            (void)RestoreAndConfirm(pRange, pAreas, sRestoringLine, ShowRestoredWords);
        return -1;
    }
    if (u32Verify != 0) {
        FillArea(pAreas->pu8ReadBack, pRange->u32Size, 0);
        if (ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned)))
            return u32Restore != 0 ? WarnNotRestored("the verification read failed") : -1;
        u32Errors = CompareWords(pRange, pAreas);
        printf("\n%u verify errors.\n", u32Errors);
    }
    if (u32Restore != 0 && u32Errors == 0 && RestoreAndConfirm(pRange, pAreas, sRestoringLine, ShowRestoredWords) != 0)
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

/* ---- Byte writes and Flash 2.x image writes ----------------------------- */

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

    if (!ReadWriteKey(pRange->hCal, &u32Key) || !ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return -1;
    if (u32Restore != 0 || pWrite->bFlash2x) {
        if (!ReadOriginal(pRange, pAreas))
            return -1;
        printf("\nRead %d bytes from dev data memory\n", (int)pRange->u32Size);
    }
    if (!FillDataPattern(&gs_stByteElement, pAreas->pu8Write, pWrite->u32Size))
        return -1;

    if (pWrite->bFlash2x)
        status = Q7_WriteFlash2xBytesWithHeader(pRange->hCal, u32Key, pAreas->pu8Write, pWrite->u32Size,
                                                pWrite->u32FlashOffset, &pWrite->stHeader, 3u, pWrite->u32WriteMode,
                                                &u32Written);
    else
        status = WriteRange(pRange, u32Key, pAreas->pu8Write, &u32Written);
    if (ReportWriteError(status))
        return -1;
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
        printf("\n\n%u verify errors.\n", u32Errors);
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
    if (!ReadHex(&u32Address, "%s", stWrite.bFlash2x ? "    Flash memory offset (hex) ? " : "    DSD address (hex) ? ") ||
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

/* ---- Region writes ------------------------------------------------------ */

static void ShowRestoredRegionBytes(uint32_t u32Written)
{
    printf("\n    Number of bytes actually written = %u\n", u32Written);
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
static int WriteRegion(const DsdRange *pRange, const DsdAreas *pAreas, uint32_t u32Key)
{
    uint32_t u32ToWrite = 0;
    uint32_t u32Kept = 0;
    uint32_t u32Written = 0;
    uint32_t u32Returned = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Restore = 0;
    uint32_t u32Errors = 0;

    if (!ReadOriginal(pRange, pAreas))
        return -1;
    /* All of it: a shorter read has stopped the command. */
    printf("\nNumber of bytes returned by ReadDSDRegionByID = %u bytes\n", pRange->u32Size);
    if (!ReadUnsigned(&u32ToWrite, "\nNumber of bytes to write (<= %d): ", (int)pRange->u32Size))
        return -1;
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

    if (ReportWriteError(Q7_WriteDSDRegionByID(pRange->hCal, u32Key, pRange->i32RegionID, u32ToWrite,
                                               pAreas->pu8Write, &u32Written)))
        return -1;
    printf("\nNumber of bytes actually written by WriteDSDRegionByID = %u\n", u32Written);

    /* The session ending before the restore question leaves the data written. */
    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT))
        return WarnNotRestored("%s", WhySessionEnded());
    if (u32Verify != 0) {
        FillArea(pAreas->pu8ReadBack, pRange->u32Size, 0);
        if (ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned)))
            return -1;
        printf("\nNumber of bytes returned by ReadDSDRegionByID = %u bytes\n", u32Returned);
        u32Errors = CompareRegion(pRange, pAreas, u32ToWrite);
        printf("\n\n%u verify errors.\n", u32Errors);
    }
    if (!ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return WarnNotRestored("%s", WhySessionEnded());
    if (u32Restore != 0 && RestoreAndConfirm(pRange, pAreas, RESTORING_LINE, ShowRestoredRegionBytes) != 0)
        return -1;
    return u32Errors == 0 ? 0 : -1;
}

int TestWriteDSDRegionByID(CalInterfaceHandle hCal)
{
    DsdRange stRange = {hCal, true, 0, 0, 0};
    DsdAreas stAreas;
    uint32_t u32Key = 0;

    if (!BeginCommand(hCal, "\nWriteDSDRegionSizeByID:"))
        return -1;
    if (!ReadSigned(&stRange.i32RegionID, "Enter region ID (dec)             ? ") || !ReadWriteKey(hCal, &u32Key))
        return -1;
    if (ReportError(Q7_GetDSDRegionSizeByID(hCal, stRange.i32RegionID, &stRange.u32Size)))
        return -1;
    printf("\nDSD region size = %d bytes\n", (int)stRange.u32Size);
    if (!AllocateAreas(&stAreas, stRange.u32Size))
        return -1;
    int iResult = WriteRegion(&stRange, &stAreas, u32Key);
    ReleaseAreas(&stAreas);
    return iResult == 0 ? ReportSuccess("WriteDSDRegionByID") : -1;
}
