/* DSD Management Commands: loading, validity and block checksums, calibration
 * record, MAC address, NVM and flash information, section selection and copy,
 * flash initialisation. None of them writes DSD data. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

const char *const gsDSDBlockName[Q7_DSD_MAX_BLOCKS] = {TEXT_DSD_BLOCK_NAMES};

/* The word between "is" and "VALID": empty for a valid checksum. */
static const char *ValidityWord(uint32_t u32Valid) { return u32Valid != 0 ? "" : "NOT"; }

/* The device may report more blocks than the table names. */
static uint32_t CapBlockCount(uint32_t u32BlockCount)
{
    return u32BlockCount > Q7_DSD_MAX_BLOCKS ? Q7_DSD_MAX_BLOCKS : u32BlockCount;
}

/* The ending of the two block listings, whose block lines come before the status. */
static int EndBlockListing(ApiStatus status, uint32_t u32BlockCount, const char *sName)
{
    if (ReportError(status))
        return -1;
    printf("%3d DSD blocks found.\n", (int)u32BlockCount);
    return ReportSuccess(sName);
}

static const char *NvmTypeName(uint32_t u32NvmType)
{
    static const char *const asNames[] = {"EEPROM", "Flash"};
    return u32NvmType < sizeof asNames / sizeof asNames[0] ? asNames[u32NvmType] : "INVALID VALUE";
}

static const char *FlashMapTypeName(uint32_t u32FlashMapType)
{
    static const char *const asNames[] = {"Not applicable", "Flash 1.x", "Flash 2.x"};
    return u32FlashMapType < sizeof asNames / sizeof asNames[0] ? asNames[u32FlashMapType] : "INVALID VALUE";
}

static char SectionFlag(uint32_t u32Bitmap, uint32_t u32Mask) { return (u32Bitmap & u32Mask) != 0 ? 'X' : ' '; }

/* The prompt of the two section selections. */
#define DSD_SECTION_PROMPT "    DSD  section (0-2) ? "

int TestLoadDSD(CalInterfaceHandle hCal)
{
    uint32_t u32LoadMode = 0;

    if (!BeginCommand(hCal, "\nLoadDSD:"))
        return -1;
    puts("    Load mode: 0=Unchanged; 1=From NVM; 2=From DDR");
    if (!ReadUnsigned(&u32LoadMode, "    DSD address ? "))
        return -1;
    return ReportOutcome(Q7_LoadDSD(hCal, u32LoadMode), "LoadDSD");
}

int TestIsDSDValid(CalInterfaceHandle hCal)
{
    uint32_t u32Valid = 0;

    if (!BeginCommand(hCal, "\nIsDSDValid:") || ReportError(Q7_IsDSDValid(hCal, &u32Valid)))
        return -1;
    printf(TEXT_CHECKSUM_STATE_FORMAT, "DSD", ValidityWord(u32Valid));
    return ReportSuccess("IsDSDValid");
}

int TestAreDSDChecksumsValid(CalInterfaceHandle hCal)
{
    uint8_t au8BlockValid[Q7_DSD_MAX_BLOCKS] = {0};
    uint32_t u32BlockCount = 0;

    if (!BeginCommand(hCal, "\nAreDSDChecksumsValid:"))
        return -1;
    ApiStatus status = Q7_AreDSDChecksumsValid(hCal, au8BlockValid, &u32BlockCount);
    u32BlockCount = CapBlockCount(u32BlockCount);
    for (uint32_t i = 0; i < u32BlockCount; i++)
        printf(TEXT_CHECKSUM_STATE_FORMAT, gsDSDBlockName[i], ValidityWord(au8BlockValid[i]));
    return EndBlockListing(status, u32BlockCount, "AreDSDChecksumsValid");
}

int TestGetDSDChecksums(CalInterfaceHandle hCal)
{
    uint16_t au16Checksum[Q7_DSD_MAX_BLOCKS];
    uint32_t u32BlockCount = 0;

    for (uint32_t i = 0; i < Q7_DSD_MAX_BLOCKS; i++)
        au16Checksum[i] = 0xFFFF;
    if (!BeginCommand(hCal, "\nGetDSDChecksums:"))
        return -1;
    ApiStatus status = Q7_GetDSDChecksums(hCal, au16Checksum, &u32BlockCount);
    u32BlockCount = CapBlockCount(u32BlockCount);
    for (uint32_t i = 0; i < u32BlockCount; i++)
        printf("    %s checksum = %04X\n", gsDSDBlockName[i], (uint32_t)au16Checksum[i]);
    return EndBlockListing(status, u32BlockCount, "GetDSDChecksums");
}

int TestIsCalibrationValid(CalInterfaceHandle hCal)
{
    uint32_t u32Valid = 0;

    if (!BeginCommand(hCal, "\nIsCalibrationValid:") || ReportError(Q7_IsCalibrationValid(hCal, &u32Valid)))
        return -1;
    printf("    " TEXT_CALIBRATION_STATE "%s\n", u32Valid != 0 ? TEXT_VALID : TEXT_NOT_VALID);
    return ReportSuccess("IsCalibrationValid");
}

/* No handle test: a null handle goes to the Cal API, which refuses it. */
int TestGetCalibrationInfo(CalInterfaceHandle hCal)
{
    uint8_t u8CalFlag = 0;
    uint8_t u8VendorID = 0;
    uint8_t au8Date[3] = {0};
    uint8_t au8Time[3] = {0};
    uint8_t au8SwVersion[3] = {0};

    puts("\nGetCalibrationInfo:");
    if (ReportError(Q7_GetCalibrationInfo(hCal, &u8CalFlag, &u8VendorID, au8Date, au8Time, au8SwVersion)))
        return -1;
    printf("    " TEXT_CAL_FLAG "    = %u\n", (uint32_t)u8CalFlag);
    printf("    " TEXT_VENDOR_ID "   = %02X\n", (uint32_t)u8VendorID);
    printf("    " TEXT_CAL_DATE "    = %02X/%02X/%02X\n", (uint32_t)au8Date[0], (uint32_t)au8Date[1], (uint32_t)au8Date[2]);
    printf("    " TEXT_CAL_TIME "    = %02X:%02X:%02X\n", (uint32_t)au8Time[0], (uint32_t)au8Time[1], (uint32_t)au8Time[2]);
    printf("    " TEXT_SW_VERSION "  = %02X.%02X.%02X\n", (uint32_t)au8SwVersion[0], (uint32_t)au8SwVersion[1],
           (uint32_t)au8SwVersion[2]);
    return ReportSuccess("GetCalibrationInfo");
}

/* No handle test: a null handle goes to the Cal API, which refuses it. */
int TestGetMACAddress(CalInterfaceHandle hCal)
{
    uint8_t au8Mac[6] = {0};

    puts("\nGetMACAddress:");
    if (ReportError(Q7_GetMACAddress(hCal, au8Mac)))
        return -1;
    printf("    " TEXT_MAC_ADDRESS " = %02X:%02X:%02X:%02X:%02X:%02X\n", (uint32_t)au8Mac[0], (uint32_t)au8Mac[1],
           (uint32_t)au8Mac[2], (uint32_t)au8Mac[3], (uint32_t)au8Mac[4], (uint32_t)au8Mac[5]);
    return ReportSuccess("GetMACAddress");
}

int TestGetNVMSize(CalInterfaceHandle hCal)
{
    uint32_t u32DsdSize = 0;

    if (!BeginCommand(hCal, "\nGetNVMSize:") || ReportError(Q7_GetNVMSize(hCal, &u32DsdSize)))
        return -1;
    printf("    DSD size = %d bytes\n", (int)u32DsdSize);
    return ReportSuccess("GetNVMSize");
}

int TestGetDSDInfo(CalInterfaceHandle hCal)
{
    uint32_t u32NvmType = 0;
    uint32_t u32DsdSize = 0;
    uint32_t u32FlashMapType = 0;

    if (!BeginCommand(hCal, "\nGetDSDInfo:"))
        return -1;
    if (ReportError(Q7_GetDSDInfo(hCal, &u32NvmType, &u32DsdSize, &u32FlashMapType)))
        return -1;
    printf("    NVM type         = %s (%d)\n", NvmTypeName(u32NvmType), (int)u32NvmType);
    printf("    DSD size = %d bytes\n", (int)u32DsdSize);
    printf("    Flash map type   = %s (%d)\n", FlashMapTypeName(u32FlashMapType), (int)u32FlashMapType);
    return ReportSuccess("GetDSDInfo");
}

int TestGetFlashDSDInfo(CalInterfaceHandle hCal)
{
    FlashDSDInfo stInfo = {{0, 0, 0}};

    if (!BeginCommand(hCal, "\nGetFlashDSDInfo:"))
        return -1;
    if (ReportError(Q7_GetFlashDSDInfo(hCal, &stInfo)))
        return -1;
    puts("  Section    Bitmap    Present  Valid  Read-Only  Active");
    for (uint32_t i = 0; i < 3; i++) {
        uint32_t u32Bitmap = stInfo.au32SectionBitmap[i];
        printf("   %3d        0x%02X        %c       %c        %c         %c\n", (int)i, u32Bitmap,
               SectionFlag(u32Bitmap, Q7_FLASH_SECTION_PRESENT), SectionFlag(u32Bitmap, Q7_FLASH_SECTION_VALID),
               SectionFlag(u32Bitmap, Q7_FLASH_SECTION_READ_ONLY), SectionFlag(u32Bitmap, Q7_FLASH_SECTION_ACTIVE));
    }
    return ReportSuccess("GetFlashDSDInfo");
}

int TestSelectActiveDSDSection(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSelectActiveDSDSection:") ||
        !ReadUnsigned(&u32Value, DSD_SECTION_PROMPT))
        return -1;
    return ReportOutcome(Q7_SelectActiveDSDSection(hCal, u32Value), "SelectActiveDSDSection");
}

int TestInitializeFlash(CalInterfaceHandle hCal)
{
    uint32_t u32DesiredSectorSize = 0;
    uint32_t u32ActualSectorSize = 0;

    if (!BeginCommand(hCal, "\nInitializeFlash:"))
        return -1;
    if (!ReadUnsigned(&u32DesiredSectorSize, "    Desired flash memory sector size (bytes) ? "))
        return -1;
    if (ReportError(Q7_InitializeFlash(hCal, u32DesiredSectorSize, &u32ActualSectorSize)))
        return -1;
    printf("    Actual flash memory sector size = %d bytes\n", (int)u32ActualSectorSize);
    return ReportSuccess("InitializeFlash");
}

int TestSelectCurrentDSDSection(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSelectCurrentDSDSection:") ||
        !ReadUnsigned(&u32Value, DSD_SECTION_PROMPT))
        return -1;
    return ReportOutcome(Q7_SelectCurrentDSDSection(hCal, u32Value), "SelectCurrentDSDSection");
}

int TestCopyDSDSection(CalInterfaceHandle hCal)
{
    uint32_t u32Source = 0;
    uint32_t u32Target = 0;
    uint32_t u32ByteCount = 0;
    uint32_t u32Offset = 0;

    if (!BeginCommand(hCal, "\nCopyDSDSection:"))
        return -1;
    if (!ReadUnsigned(&u32Source, "    Source DSD  section (0-2) ? ") ||
        !ReadUnsigned(&u32Target, "    Target DSD  section (0-2) ? ") ||
        !ReadUnsigned(&u32ByteCount, "    Number of bytes to copy (dec)    ? ") ||
        !ReadHex(&u32Offset, "    Starting offset in section (hex) ? "))
        return -1;
    return ReportOutcome(Q7_CopyDSDSection(hCal, u32Source, u32Target, u32ByteCount, u32Offset), "CopyDSDSection");
}
