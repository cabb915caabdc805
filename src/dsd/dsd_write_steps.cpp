#include "dsd_write_steps.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "command_steps.h"
#include "console.h"
#include "data_utils.h"
#include "printed_texts.h"

#define ALLOCATION_FAILED_LINE "\nERROR: Data block memory allocation failed"

/* Far more than any DSD holds: a larger write is a typing slip, and filling
 * and clearing gigabytes of areas would hold the console for minutes before
 * the device refused it. */
#define MAX_WRITE_AREA_SIZE (16u * 1024u * 1024u)

bool ReportReadError(ApiStatus status)
{
    if (status == NULL)
        return false;
    PrintDeviceNotice("\nREAD ERROR: %s\n", status);
    return true;
}

bool ReportWriteError(ApiStatus status)
{
    if (status == NULL)
        return false;
    PrintDeviceNotice("\nWRITE ERROR: %s\n", status);
    return true;
}

int WarnNotRestored(const char *sReasonFormat, ...)
{
    char sReason[160];
    va_list args;
    va_start(args, sReasonFormat);
    vsnprintf(sReason, sizeof sReason, sReasonFormat, args);
    va_end(args);
    PrintDeviceNotice("\nWARNING: Original data not restored, because %s.\n", sReason);
    return -1;
}

bool AllocateAreas(DsdAreas *pAreas, uint32_t u32Size)
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

void ReleaseAreas(DsdAreas *pAreas)
{
    bfree(pAreas->pu8Original);
    memset(pAreas, 0, sizeof *pAreas);
}

void FillArea(uint8_t *pu8Area, uint32_t u32Size, uint8_t u8Value)
{
    if (u32Size != 0)
        memset(pu8Area, u8Value, u32Size);
}

/* The two areas hold the same bytes. */
static bool SameBytes(const uint8_t *pu8A, const uint8_t *pu8B, uint32_t u32Size)
{
    return u32Size == 0 || memcmp(pu8A, pu8B, u32Size) == 0;
}

ApiStatus ReadRange(const DsdRange *pRange, uint8_t *pu8Dest, uint32_t *pu32Returned)
{
    *pu32Returned = 0;
    if (pRange->bRegion)
        return Q7_ReadDSDRegionByID(pRange->hCal, pRange->i32RegionID, pRange->u32Size, pu8Dest, pu32Returned);
    *pu32Returned = pRange->u32Size;
    return Q7_ReadDSDBytes(pRange->hCal, pu8Dest, pRange->u32Size, pRange->u32Address);
}

ApiStatus WriteRange(const DsdRange *pRange, uint32_t u32Key, const uint8_t *pu8Source, uint32_t u32Count,
                     uint32_t *pu32Written)
{
    *pu32Written = 0;
    if (pRange->bRegion)
        return Q7_WriteDSDRegionByID(pRange->hCal, u32Key, pRange->i32RegionID, u32Count, pu8Source, pu32Written);
    return Q7_WriteDSDBytes(pRange->hCal, u32Key, pu8Source, u32Count, pRange->u32Address, pu32Written);
}

bool ReadOriginal(const DsdRange *pRange, const DsdAreas *pAreas, uint32_t *pu32Returned)
{
    uint8_t *apu8Reads[2] = {pAreas->pu8Original, pAreas->pu8ReadBack};
    const uint8_t au8Fill[2] = {0x00, 0xFF};

    for (int i = 0; i < 2; i++) {
        uint32_t u32Returned = 0;
        FillArea(apu8Reads[i], pRange->u32Size, au8Fill[i]);
        if (ReportReadError(ReadRange(pRange, apu8Reads[i], &u32Returned)))
            return false;
        if (i == 0)
            *pu32Returned = u32Returned;
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

/* The range read into the read-back area, filled first with the complement
 * of the original so that nothing unread passes for it: true when it holds
 * the original. False with *pbRead false when the read failed (after its
 * READ ERROR). */
static bool HoldsOriginal(const DsdRange *pRange, const DsdAreas *pAreas, bool *pbRead)
{
    uint32_t u32Returned = 0;
    for (uint32_t i = 0; i < pRange->u32Size; i++)
        pAreas->pu8ReadBack[i] = (uint8_t)~pAreas->pu8Original[i];
    *pbRead = !ReportReadError(ReadRange(pRange, pAreas->pu8ReadBack, &u32Returned));
    return *pbRead && u32Returned >= pRange->u32Size &&
           SameBytes(pAreas->pu8ReadBack, pAreas->pu8Original, pRange->u32Size);
}

int RestoreAndConfirm(const DsdRange *pRange, const DsdAreas *pAreas, const char *sRestoringLine,
                      ShowWrittenFunction pfnShowWritten)
{
    uint32_t u32Written = 0;
    bool bRead = false;

    puts(sRestoringLine);
    uint32_t u32FreshKey = Q7_RequestDSDWriteKey(pRange->hCal);
    if (ReportWriteError(WriteRange(pRange, u32FreshKey, pAreas->pu8Original, pRange->u32Size, &u32Written)))
        return -1;
    pfnShowWritten(u32Written);
    if (u32Written < pRange->u32Size)
        return WarnNotRestored("the restore wrote %u of %u bytes", u32Written, pRange->u32Size);
    if (!HoldsOriginal(pRange, pAreas, &bRead))
        return WarnNotRestored(bRead ? "the restored data did not read back"
                                     : "the restored data could not be read back");
    return 0;
}

int LookAfterFailedWrite(const DsdRange *pRange, const DsdAreas *pAreas, bool bRestore, const char *sRestoringLine,
                         ShowWrittenFunction pfnShowWritten)
{
    bool bRead = false;
    if (HoldsOriginal(pRange, pAreas, &bRead)) {
        puts("\nThe DSD range is unchanged.");
        return -1;
    }
    if (!bRead)
        return WarnNotRestored("the range could not be read after the failed write");
    if (!bRestore)
        return WarnNotRestored("the failed write changed the range before the restore question");
    (void)RestoreAndConfirm(pRange, pAreas, sRestoringLine, pfnShowWritten);
    return -1;
}

bool BeginWithNvmMode(CalInterfaceHandle hCal, const char *sHeading, int32_t *pi32NvmMode)
{
    if (hCal == NULL)
        return false;
    *pi32NvmMode = 0;
    (void)Q7_GetOptionByID(hCal, Q7_OPTION_NVM_MODE, pi32NvmMode);
    return BeginCommand(hCal, sHeading);
}

bool ReadWriteKey(CalInterfaceHandle hCal, uint32_t *pu32Key, bool *pbRequested)
{
    uint32_t u32Auto = 0;

    *pbRequested = false;
    if (!ReadUnsigned(&u32Auto, "\n    Auto DSD key (1=yes/0=no) ? "))
        return false;
    if (u32Auto == 1) {
        *pu32Key = Q7_RequestDSDWriteKey(hCal);
        *pbRequested = true;
        return true;
    }
    return ReadHex(pu32Key, "    DSD Key (hex)     ? ");
}

int EndBeforeTheWrite(bool bKeyRequested)
{
    if (bKeyRequested)
        PrintDeviceNotice(TEXT_KEY_REPLACED "\n");
    return -1;
}

static uint32_t RandomByte(void) { return (uint32_t)rand(); }

const PatternElement gs_stWordElement = {4u, "Value", Q7_rand32};
const PatternElement gs_stByteElement = {1u, "Byte", RandomByte};

/* Stores element i; a byte keeps the value's low 8 bits. */
static void StoreElement(const PatternElement *pElement, uint8_t *pu8Area, uint32_t i, uint32_t u32Value)
{
    if (pElement->u32Size == 4u)
        memcpy(pu8Area + 4u * (size_t)i, &u32Value, sizeof u32Value);
    else
        pu8Area[i] = (uint8_t)u32Value;
}

bool FillDataPattern(const PatternElement *pElement, uint8_t *pu8Area, uint32_t u32Count)
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
        if (!ReadHex(&u32Value, "    Starting value (hex) ? ") ||
            !ReadHex(&u32Increment, "    Increment      (hex) ? "))
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
