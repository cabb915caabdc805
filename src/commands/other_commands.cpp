/* Other Commands: GPIO, RFIC registers, temperature, GP ADC/DAC, the Rx
 * spectrum capture and the version report. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

/* Room of the spectrum array; the capture is never read beyond it. */
#define RX_SPECTRUM_CAPACITY 2048u
#define RX_SPECTRUM_ROW 16u

int TestReadGPIOState(CalInterfaceHandle hCal)
{
    uint32_t u32PinState = 0;
    uint32_t u32PinDirection = 0;
    uint32_t u32WritePermission = 0;

    if (!BeginCommand(hCal, "\nReadGPIOState:"))
        return -1;
    if (ReportError(Q7_ReadGPIOState(hCal, &u32PinState, &u32PinDirection, &u32WritePermission)))
        return -1;
    printf("     GPIO pin state            = %08X\n", u32PinState);
    printf("     GPIO pin direction        = %08X (1=Input; 0=Output)\n", u32PinDirection);
    printf("     GPIO pin write permission = %08X (0=read-only; 1=read-write)\n", u32WritePermission);
    return ReportSuccess("ReadGPIOState");
}

int TestSetGPIOConfiguration(CalInterfaceHandle hCal)
{
    uint32_t u32WritePermission = 0;

    if (!BeginCommand(hCal, "\nSetGPIOConfiguration:"))
        return -1;
    puts("The parameters specify the configuration of each pin:");
    puts("  GPIO write permission: 0=read-only; 1=read-write");
    puts("Please enter:");
    if (!ReadHex(&u32WritePermission, "    GPIO write permission (hex) ? "))
        return -1;
    return ReportOutcome(Q7_SetGPIOConfiguration(hCal, u32WritePermission), "SetGPIOConfiguration");
}

int TestSetGPIOPinState(CalInterfaceHandle hCal)
{
    uint32_t u32Pin = 0;
    uint32_t u32State = 0;

    if (!BeginCommand(hCal, "\nSetGPIOPinState:"))
        return -1;
    if (!ReadUnsigned(&u32Pin, "    GPIO pin number (0-31) ? ") ||
        !ReadUnsigned(&u32State, "    GPIO pin state (0-1)   ? "))
        return -1;
    return ReportOutcome(Q7_SetGPIOPinState(hCal, u32Pin, u32State), "SetGPIOPinState");
}

int TestReadRFICRegister(CalInterfaceHandle hCal)
{
    uint32_t u32Bank = 0;
    uint32_t u32Register = 0;
    uint32_t u32Timing = 0;
    uint32_t u32Data = 0;

    if (!BeginCommand(hCal, "\nReadRFICRegister:"))
        return -1;
    if (!ReadUnsigned(&u32Bank, "     RFIC Bank Address\t\t\t\t\t\t? ") ||
        !ReadHex(&u32Register, "     RFIC register number (hex)\t\t\t\t\t? ") ||
        !ReadUnsigned(&u32Timing, "     RFIC read timing (0=GTB based, 1=Immediate)? "))
        return -1;
    if (ReportError(Q7_ReadRFICRegister(hCal, u32Bank, u32Register, u32Timing, &u32Data)))
        return -1;
    printf("\n");
    printf("     RFIC register data = %08X\n", u32Data);
    return ReportSuccess("ReadRFICRegister");
}

int TestWriteRFICRegister(CalInterfaceHandle hCal)
{
    uint32_t u32Bank = 0;
    uint32_t u32Register = 0;
    uint32_t u32Data = 0;
    uint32_t u32Timing = 0;

    if (!BeginCommand(hCal, "\nWriteRFICRegister:"))
        return -1;
    if (!ReadUnsigned(&u32Bank, "\t RFIC Bank Address\t\t? ") ||
        !ReadHex(&u32Register, "     RFIC register number (hex)\t\t\t? ") ||
        !ReadHex(&u32Data, "     RFIC register data (hex)\t\t\t? ") ||
        !ReadUnsigned(&u32Timing, "     RFIC write timing (0=GTB based, 1=Immediate)? "))
        return -1;
    if (ReportError(Q7_WriteRFICRegister(hCal, u32Bank, u32Register, u32Data, u32Timing)))
        return -1;
    printf("\n");
    return ReportSuccess("WriteRFICRegister");
}

int TestGetTemperature(CalInterfaceHandle hCal)
{
    double dDegreesC = 0.0;

    if (!BeginCommand(hCal, "\nGetTemperature:") || ReportError(Q7_GetTemperature(hCal, &dDegreesC)))
        return -1;
    printf("    " TEXT_TEMPERATURE " = %.0f C\n", dDegreesC);
    return ReportSuccess("GetTemperature");
}

int TestGetGPADCValue(CalInterfaceHandle hCal)
{
    uint32_t u32Mux = 0;
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nGetGPADCValue:"))
        return -1;
    if (!ReadUnsigned(&u32Mux, "     GP ADC mux setting (0-3) ? "))
        return -1;
    if (ReportError(Q7_GetGPADCValue(hCal, u32Mux, &u32Value)))
        return -1;
    printf("     Value = %u\n", u32Value);
    return ReportSuccess("GetGPADCValue");
}

int TestSetGPDACValue(CalInterfaceHandle hCal)
{
    uint32_t u32Mux = 0;
    double dVolts = 0.0;

    if (!BeginCommand(hCal, "\nSetGPDACValue:"))
        return -1;
    if (!ReadUnsigned(&u32Mux, "     GP DAC mux setting (0-3) ? ") ||
        !ReadDouble(&dVolts, "     GP DAC voltage (Volts)   ? "))
        return -1;
    return ReportOutcome(Q7_SetGPDACValue(hCal, u32Mux, dVolts), "SetGPDACValue");
}

int TestResetRxSpectrum(CalInterfaceHandle hCal)
{
    uint32_t u32AlphaShift = 0;
    uint32_t u32SymbolIndex = 0;

    if (!BeginCommand(hCal, "\nResetRxSpectrum"))
        return -1;
    if (!ReadUnsigned(&u32AlphaShift, "     Shift for IIR filter alpha (0-16) ? ") ||
        !ReadUnsigned(&u32SymbolIndex, "     Symbol index to be captured       ? "))
        return -1;
    return ReportOutcome(Q7_ResetRxSpectrum(hCal, u32AlphaShift, u32SymbolIndex), "ResetRxSpectrum");
}

int TestGetRxSpectrum(CalInterfaceHandle hCal)
{
    double adSpectrum[RX_SPECTRUM_CAPACITY] = {0};
    uint32_t u32Length = 0;

    if (!BeginCommand(hCal, "\nGetRxSpectrum"))
        return -1;
    if (ReportError(Q7_GetRxSpectrum(hCal, RX_SPECTRUM_CAPACITY, adSpectrum, &u32Length)))
        return -1;
    /* The length line shows what the device reported; the rows never go
     * beyond the capacity that was passed. */
    printf("\n" TEXT_SPECTRUM_LENGTH " = %u\n", u32Length);
    for (uint32_t i = 0; i < u32Length && i < RX_SPECTRUM_CAPACITY; i++) {
        if (i % RX_SPECTRUM_ROW == 0)
            printf("\n%4d:", (int)i);
        printf("%7.1f", adSpectrum[i]);
    }
    printf("\n");
    return ReportSuccess("GetRxSpectrum");
}

/* Asks the library even without a handle: the library answers a null handle
 * with its own error text. */
int TestGetVersionInfo(CalInterfaceHandle hCal)
{
    uint32_t u32PhyFirmware = 0;
    uint32_t au32MacFirmware[3] = {0, 0, 0};
    char sDriverVersion[Q7_DRIVER_VERSION_SIZE] = {0};
    uint32_t au32CalApiVersion[3] = {0, 0, 0};
    uint32_t au32LocalCalApiVersion[3] = {0, 0, 0};
    uint32_t u32BasebandChip = 0;
    uint32_t u32RfChip = 0;

    puts("\nGetVersionInfo:");
    if (ReportError(Q7_GetVersionInfo(hCal, &u32PhyFirmware, au32MacFirmware, sDriverVersion, au32CalApiVersion,
                                      au32LocalCalApiVersion, &u32BasebandChip, &u32RfChip)))
        return -1;
    sDriverVersion[Q7_DRIVER_VERSION_SIZE - 1] = '\0';
    printf("    " TEXT_PHY_FIRMWARE_VERSION "    = %08X\n", u32PhyFirmware);
    printf("    " TEXT_MAC_FIRMWARE_VERSION "    = %u.%u.%u\n", au32MacFirmware[0], au32MacFirmware[1], au32MacFirmware[2]);
    printf("    " TEXT_DRIVER_VERSION "          = %s\n", sDriverVersion);
    printf("    " TEXT_CAL_API_LIBRARY_VERSION " = %u.%u.%u\n", au32CalApiVersion[0], au32CalApiVersion[1],
           au32CalApiVersion[2]);
    printf("    " TEXT_LOCAL_CAL_API_LIBRARY_VERSION " = %u.%u.%u\n", au32LocalCalApiVersion[0], au32LocalCalApiVersion[1],
           au32LocalCalApiVersion[2]);
    printf("    " TEXT_BASEBAND_CHIP_VERSION "   = %08X\n", u32BasebandChip);
    printf("    " TEXT_RF_CHIP_VERSION "         = %04X\n", u32RfChip);
    return ReportSuccess("GetVersionInfo");
}
