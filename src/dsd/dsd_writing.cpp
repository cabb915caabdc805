/* DSD Read/Write Commands that write: the write key, the block write, the byte
 * and Flash 2.x image writes, and the region write.
 *
 * Every write runs one course (RunDsdWrite): the write with the command's key
 * and the count written; an optional verification into a cleared read-back
 * area that reports every difference; an optional restore of the original
 * contents with a fresh key, withheld after verify errors except by the region
 * write. Each command keeps one working buffer of three equal areas (original,
 * write, read-back), allocated after its sizes were checked and released on
 * every path. */
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

/* What one write command works on. The range (address, area size) is what a
 * verification reads and a restore writes back; the data write covers
 * u32Size bytes of it (at the flash offset for a Flash 2.x image). */
typedef struct DsdWrite {
    CalInterfaceHandle hCal;
    uint8_t *pu8Original;
    uint8_t *pu8Write;
    uint8_t *pu8ReadBack;
    uint32_t u32AreaSize;
    uint32_t u32Address;
    uint32_t u32Size;
    /* Flash 2.x image writes */
    bool bFlash2x;
    uint32_t u32FlashOffset;
    uint32_t u32WriteMode;
    Flash2xBytesWithHeader stHeader;
    /* Region writes */
    int32_t i32RegionID;
} DsdWrite;

/* The steps in which the three write commands differ. */
typedef struct DsdWriteSteps {
    /* The data write with the given key. */
    ApiStatus (*pfnWriteData)(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written);
    /* Writes the original area back over the range with the given key. */
    ApiStatus (*pfnWriteOriginal)(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written);
    /* The count line after the data write or after the restore. */
    void (*pfnShowWritten)(uint32_t u32Written, bool bRestore);
    /* Reads the range into the read-back area, reports every difference and
     * the error count; false after a read error. */
    bool (*pfnVerify)(const DsdWrite *pWrite, uint32_t *pu32Errors);
    /* The restore question follows the verification, and the restore is made
     * whatever the verification found. */
    bool bRestoreAfterVerify;
    const char *sRestoringLine;
    /* Said instead of restoring after verify errors; NULL: nothing is said. */
    const char *sNotRestoredLine;
} DsdWriteSteps;

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

/* Far more than any DSD holds: a larger write is a typing slip, and filling
 * and clearing gigabytes of areas would hold the console for minutes before
 * the device refused it. */
#define MAX_WRITE_AREA_SIZE (16u * 1024u * 1024u)

/* Carves the three areas out of one allocation; none for an area size of 0.
 * False after the error line. */
static bool AllocateAreas(DsdWrite *pWrite, uint32_t u32AreaSize)
{
    pWrite->u32AreaSize = u32AreaSize;
    if (u32AreaSize == 0)
        return true;
    if (u32AreaSize > MAX_WRITE_AREA_SIZE) {
        printf("\nERROR: A write of %u bytes is larger than any DSD (at most %u)\n", u32AreaSize, MAX_WRITE_AREA_SIZE);
        return false;
    }
    uint8_t *pu8Buffer = (uint8_t *)malloc(3u * (size_t)u32AreaSize);
    if (pu8Buffer == NULL) {
        puts(ALLOCATION_FAILED_LINE);
        return false;
    }
    pWrite->pu8Original = pu8Buffer;
    pWrite->pu8Write = pu8Buffer + u32AreaSize;
    pWrite->pu8ReadBack = pu8Buffer + 2u * (size_t)u32AreaSize;
    return true;
}

static void ReleaseAreas(DsdWrite *pWrite)
{
    bfree(pWrite->pu8Original);
    pWrite->pu8Original = pWrite->pu8Write = pWrite->pu8ReadBack = NULL;
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

/* ---- The course of every write ----------------------------------------- */

/* The data write, its verification and the restore. u32Restore is the answer
 * already given, unless the steps ask for it after the verification. Returns
 * 0 when the write succeeded without verify errors, else -1. */
static int RunDsdWrite(const DsdWriteSteps *pSteps, const DsdWrite *pWrite, uint32_t u32Key, uint32_t u32Restore)
{
    uint32_t u32Written = 0;
    uint32_t u32Verify = 0;
    uint32_t u32Errors = 0;

    if (ReportWriteError(pSteps->pfnWriteData(pWrite, u32Key, &u32Written)))
        return -1;
    pSteps->pfnShowWritten(u32Written, false);

    if (!ReadUnsigned(&u32Verify, VERIFY_PROMPT))
        return -1;
    if (u32Verify != 0) {
        /* A short read then shows as verify errors, never as stale data. */
        if (pWrite->u32AreaSize != 0)
            memset(pWrite->pu8ReadBack, 0, pWrite->u32AreaSize);
        if (!pSteps->pfnVerify(pWrite, &u32Errors))
            return -1;
    }

    if (pSteps->bRestoreAfterVerify && !ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return -1;
    if (u32Restore != 0 && u32Errors != 0 && !pSteps->bRestoreAfterVerify) {
        if (pSteps->sNotRestoredLine != NULL)
            puts(pSteps->sNotRestoredLine);
    } else if (u32Restore != 0) {
        puts(pSteps->sRestoringLine);
        uint32_t u32FreshKey = Q7_RequestDSDWriteKey(pWrite->hCal);
        if (ReportWriteError(pSteps->pfnWriteOriginal(pWrite, u32FreshKey, &u32Written)))
            return -1;
        pSteps->pfnShowWritten(u32Written, true);
    }
    return u32Errors == 0 ? 0 : -1;
}

/* The plain reads and writes of the range at its DSD address. */
static ApiStatus ReadRange(const DsdWrite *pWrite, uint8_t *pu8Dest)
{
    return Q7_ReadDSDBytes(pWrite->hCal, pu8Dest, pWrite->u32AreaSize, pWrite->u32Address);
}

static ApiStatus WriteRangeData(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written)
{
    return Q7_WriteDSDBytes(pWrite->hCal, u32Key, pWrite->pu8Write, pWrite->u32Size, pWrite->u32Address, pu32Written);
}

static ApiStatus WriteRangeOriginal(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written)
{
    return Q7_WriteDSDBytes(pWrite->hCal, u32Key, pWrite->pu8Original, pWrite->u32AreaSize, pWrite->u32Address,
                            pu32Written);
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

static void ShowWordsWritten(uint32_t u32Written, bool bRestore)
{
    if (bRestore)
        printf("\n    Number of 32-bit words actually written = %u\n", u32Written / 4u);
    else
        printf("\nNumber of 32-bit words actually written = %u\n", u32Written / 4u);
}

static bool VerifyBlock(const DsdWrite *pWrite, uint32_t *pu32Errors)
{
    if (ReportReadError(ReadRange(pWrite, pWrite->pu8ReadBack)))
        return false;
    for (uint32_t i = 0; i < pWrite->u32Size / 4u; i++) {
        uint32_t u32Wrote = WordAt(pWrite->pu8Write, i);
        uint32_t u32Read = WordAt(pWrite->pu8ReadBack, i);
        if (u32Read != u32Wrote) {
            printf("\n%08X: Wrote %08X - Read back %08X - Verify ERROR", pWrite->u32Address + 4u * i, u32Wrote,
                   u32Read);
            (*pu32Errors)++;
        }
    }
    printf("\n%u verify errors.\n", *pu32Errors);
    return true;
}

static const DsdWriteSteps gs_stBlockSteps = {
    WriteRangeData, WriteRangeOriginal, ShowWordsWritten, VerifyBlock, false,
    "\nRestoring original DSD  values ... ", NULL,
};

/* Key, restore answer, original contents, pattern, then the write's course. */
static int WriteBlock(const DsdWrite *pWrite)
{
    uint32_t u32Key = 0;
    uint32_t u32Restore = 0;

    if (!ReadWriteKey(pWrite->hCal, &u32Key) || !ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return -1;
    if (u32Restore != 0 && ReportReadError(ReadRange(pWrite, pWrite->pu8Original)))
        return -1;
    if (!FillDataPattern(&gs_stWordElement, pWrite->pu8Write, pWrite->u32Size / 4u))
        return -1;
    return RunDsdWrite(&gs_stBlockSteps, pWrite, u32Key, u32Restore);
}

int TestWriteDSDBlock(CalInterfaceHandle hCal)
{
    DsdWrite stWrite = {};
    int32_t i32NvmMode = 0;
    uint32_t u32WordCount = 0;

    if (!BeginWithNvmMode(hCal, "\nWrite DSD Block:", &i32NvmMode))
        return -1;
    puts("\nNote: Block size is the number of 32-bit unsigned integers (not bytes).");
    printf("    NVM mode is %d\n", (int)i32NvmMode);
    if (!ReadHex(&stWrite.u32Address, "   DSD address (hex) ? ") ||
        !ReadUnsigned(&u32WordCount, "    Block size (dec)          ? "))
        return -1;
    if (!BlockSizeFits(u32WordCount))
        return -1;
    stWrite.hCal = hCal;
    stWrite.u32Size = u32WordCount * 4u;
    if (!AllocateAreas(&stWrite, stWrite.u32Size))
        return -1;
    int iResult = WriteBlock(&stWrite);
    ReleaseAreas(&stWrite);
    return iResult == 0 ? ReportSuccess("WriteDSDBlock") : -1;
}

/* ---- Byte writes and Flash 2.x image writes ----------------------------- */

static void ShowBytesWritten(uint32_t u32Written, bool) { printf("\nWrote %d bytes to dev data memory\n", (int)u32Written); }

static ApiStatus WriteByteData(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written)
{
    if (!pWrite->bFlash2x)
        return WriteRangeData(pWrite, u32Key, pu32Written);
    return Q7_WriteFlash2xBytesWithHeader(pWrite->hCal, u32Key, pWrite->pu8Write, pWrite->u32Size,
                                          pWrite->u32FlashOffset, &pWrite->stHeader, 3u, pWrite->u32WriteMode,
                                          pu32Written);
}

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
static uint32_t CompareFlash2xImage(const DsdWrite *pWrite)
{
    const uint8_t *pu8Read = pWrite->pu8ReadBack;
    uint32_t u32Offset = pWrite->u32FlashOffset;
    uint32_t u32End = u32Offset + pWrite->u32Size;
    uint32_t u32Errors = CompareBlocks(pu8Read, pWrite->pu8Original, 0, 0, u32Offset);

    u32Errors += CompareBlocks(pu8Read, pWrite->pu8Write, u32Offset, 0, pWrite->u32Size);
    if (u32End > FLASH2X_HEADER_OFFSET)
        puts("ERROR: Attempt to overwrite the Flash 2.x header block at offset = 63*1024");
    else if (pWrite->u32WriteMode == FLASH2X_FILL_GAP)
        u32Errors += CompareFill(pu8Read, u32End, FLASH2X_HEADER_OFFSET - u32End, FLASH2X_ERASED);
    else
        u32Errors += CompareBlocks(pu8Read, pWrite->pu8Original, u32End, u32End, FLASH2X_HEADER_OFFSET - u32End);

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

static bool VerifyBytes(const DsdWrite *pWrite, uint32_t *pu32Errors)
{
    ApiStatus status = ReadRange(pWrite, pWrite->pu8ReadBack);
    printf("\nRead %d bytes from dev data memory\n", (int)pWrite->u32AreaSize);
    if (ReportReadError(status))
        return false;
    if (pWrite->bFlash2x)
        *pu32Errors = CompareFlash2xImage(pWrite);
    else
        *pu32Errors = CompareBlocks(pWrite->pu8ReadBack, pWrite->pu8Write, 0, 0, pWrite->u32Size);
    printf("\n\n%u verify errors.\n", *pu32Errors);
    return true;
}

static const DsdWriteSteps gs_stByteSteps = {
    WriteByteData, WriteRangeOriginal, ShowBytesWritten, VerifyBytes, false,
    "\nRestoring original DSD values ... ", "\nWARNING: Original data not restored, because verify error count > 0.",
};

/* The write mode and the header values of a Flash 2.x image write. */
static bool ReadFlash2xParameters(DsdWrite *pWrite)
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
 * the verification compares with them), pattern, then the write's course. */
static int WriteBytes(const DsdWrite *pWrite)
{
    uint32_t u32Key = 0;
    uint32_t u32Restore = 0;

    if (!ReadWriteKey(pWrite->hCal, &u32Key) || !ReadUnsigned(&u32Restore, RESTORE_PROMPT))
        return -1;
    if (u32Restore != 0 || pWrite->bFlash2x) {
        if (ReportReadError(ReadRange(pWrite, pWrite->pu8Original)))
            return -1;
        printf("\nRead %d bytes from dev data memory\n", (int)pWrite->u32AreaSize);
    }
    if (!FillDataPattern(&gs_stByteElement, pWrite->pu8Write, pWrite->u32Size))
        return -1;
    return RunDsdWrite(&gs_stByteSteps, pWrite, u32Key, u32Restore);
}

int Q7_WriteDSDBytesEx(CalInterfaceHandle hCal, uint32_t u32Flash2x)
{
    DsdWrite stWrite = {};
    int32_t i32NvmMode = 0;
    uint32_t u32Address = 0;

    if (!BeginWithNvmMode(hCal, "\nWrite DSD Bytes:", &i32NvmMode))
        return -1;
    printf("    NVM mode is %d\n\n", (int)i32NvmMode);
    puts("Bytes to be written:");
    stWrite.hCal = hCal;
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
        stWrite.u32Address = 0;
    } else {
        stWrite.u32Address = u32Address;
    }
    if (!AllocateAreas(&stWrite, stWrite.bFlash2x ? FLASH2X_IMAGE_SIZE : stWrite.u32Size))
        return -1;
    int iResult = WriteBytes(&stWrite);
    ReleaseAreas(&stWrite);
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

/* Reads the whole region into the area; false after the read error. */
static bool ReadRegion(const DsdWrite *pWrite, uint8_t *pu8Dest)
{
    uint32_t u32Returned = 0;
    if (ReportReadError(Q7_ReadDSDRegionByID(pWrite->hCal, pWrite->i32RegionID, pWrite->u32AreaSize, pu8Dest,
                                             &u32Returned)))
        return false;
    printf("\nNumber of bytes returned by ReadDSDRegionByID = %u bytes\n", u32Returned);
    return true;
}

static ApiStatus WriteRegionData(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written)
{
    return Q7_WriteDSDRegionByID(pWrite->hCal, u32Key, pWrite->i32RegionID, pWrite->u32Size, pWrite->pu8Write,
                                 pu32Written);
}

static ApiStatus WriteRegionOriginal(const DsdWrite *pWrite, uint32_t u32Key, uint32_t *pu32Written)
{
    return Q7_WriteDSDRegionByID(pWrite->hCal, u32Key, pWrite->i32RegionID, pWrite->u32AreaSize,
                                 pWrite->pu8Original, pu32Written);
}

static void ShowRegionWritten(uint32_t u32Written, bool bRestore)
{
    if (bRestore)
        printf("\n    Number of bytes actually written = %u\n", u32Written);
    else
        printf("\nNumber of bytes actually written by WriteDSDRegionByID = %u\n", u32Written);
}

/* The bytes written read back as written, the rest of the region as 0. */
static bool VerifyRegion(const DsdWrite *pWrite, uint32_t *pu32Errors)
{
    if (!ReadRegion(pWrite, pWrite->pu8ReadBack))
        return false;
    for (uint32_t i = 0; i < pWrite->u32AreaSize; i++) {
        uint8_t u8Expected = i < pWrite->u32Size ? pWrite->pu8Write[i] : 0;
        if (pWrite->pu8ReadBack[i] != u8Expected) {
            printf("\n%08X: Wrote %02X - Read back %02X - Verify ERROR", i, u8Expected, pWrite->pu8ReadBack[i]);
            (*pu32Errors)++;
        }
    }
    printf("\n\n%u verify errors.\n", *pu32Errors);
    return true;
}

static const DsdWriteSteps gs_stRegionSteps = {
    WriteRegionData, WriteRegionOriginal, ShowRegionWritten, VerifyRegion, true,
    "\nRestoring original DSD values ... ", NULL,
};

/* Original contents, the count to write, the random data (region 4 keeps its
 * first bytes), then the write's course. */
static int WriteRegion(DsdWrite *pWrite, uint32_t u32Key)
{
    uint32_t u32Kept = 0;

    if (!ReadRegion(pWrite, pWrite->pu8Original))
        return -1;
    if (!ReadUnsigned(&pWrite->u32Size, "\nNumber of bytes to write (<= %d): ", (int)pWrite->u32AreaSize))
        return -1;
    if (pWrite->u32Size > pWrite->u32AreaSize)
        pWrite->u32Size = pWrite->u32AreaSize;
    if (pWrite->i32RegionID == CAL_REGION_ID) {
        /* A region shorter than those bytes keeps what it holds. */
        u32Kept = pWrite->u32AreaSize < CAL_REGION_KEPT_BYTES ? pWrite->u32AreaSize : CAL_REGION_KEPT_BYTES;
        printf("\nLeaving the first %d bytes unchanged.\n", (int)u32Kept);
        if (u32Kept != 0)
            memcpy(pWrite->pu8Write, pWrite->pu8Original, u32Kept);
    }
    printf("Writing random data = %u bytes\n", pWrite->u32Size > u32Kept ? pWrite->u32Size - u32Kept : 0u);
    for (uint32_t i = u32Kept; i < pWrite->u32Size; i++)
        pWrite->pu8Write[i] = (uint8_t)rand();
    return RunDsdWrite(&gs_stRegionSteps, pWrite, u32Key, 0);
}

int TestWriteDSDRegionByID(CalInterfaceHandle hCal)
{
    DsdWrite stWrite = {};
    uint32_t u32Key = 0;
    uint32_t u32RegionSize = 0;

    if (!BeginCommand(hCal, "\nWriteDSDRegionSizeByID:"))
        return -1;
    stWrite.hCal = hCal;
    if (!ReadSigned(&stWrite.i32RegionID, "Enter region ID (dec)             ? ") || !ReadWriteKey(hCal, &u32Key))
        return -1;
    if (ReportError(Q7_GetDSDRegionSizeByID(hCal, stWrite.i32RegionID, &u32RegionSize)))
        return -1;
    printf("\nDSD region size = %d bytes\n", (int)u32RegionSize);
    if (!AllocateAreas(&stWrite, u32RegionSize))
        return -1;
    int iResult = WriteRegion(&stWrite, u32Key);
    ReleaseAreas(&stWrite);
    return iResult == 0 ? ReportSuccess("WriteDSDRegionByID") : -1;
}
