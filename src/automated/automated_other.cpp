/* The other-command group test of the automated run: the LED pins of the
 * GPIO block, RFIC register 30, temperature, GP ADC/DAC, the Rx spectrum and
 * the version report. */
#include <stdio.h>

#include "automated.h"
#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "host_time.h"
#include "printed_texts.h"

/* GPIO 10, 11 and 12 drive the LEDs. */
#define LED_PIN_FIRST 10u
#define LED_PIN_LAST 12u
#define LED_PIN_MASK 0x1C00u

#define TEST_REGISTER 30u

/* The masks of the latest GPIO read; a failed read keeps the previous ones
 * (zeros before the first), and no verdict is given on them. */
typedef struct GpioState {
    uint32_t u32PinState;
    uint32_t u32Direction; /* 1 = input */
    uint32_t u32WritePermission;
} GpioState;

/* True when the read succeeded. */
static bool ReadGpio(CalInterfaceHandle hCal, GpioState *pstGpio)
{
    return !ReportTestError(
        Q7_ReadGPIOState(hCal, &pstGpio->u32PinState, &pstGpio->u32Direction, &pstGpio->u32WritePermission));
}

static void PrintGpioState(const GpioState *pstGpio)
{
    printf("GPIO pin state        = %08X\n", pstGpio->u32PinState);
    printf("GPIO direction        = %08X\n", pstGpio->u32Direction);
    printf("GPIO write permission = %08X\n", pstGpio->u32WritePermission);
}

/* Drives every LED pin that the latest read shows as an output to the value. */
static void SetLedPins(CalInterfaceHandle hCal, const GpioState *pstGpio, uint32_t u32Value)
{
    for (uint32_t u32Pin = LED_PIN_FIRST; u32Pin <= LED_PIN_LAST; u32Pin++) {
        printf(TEXT_PIN_WRITE "%d to %d", (int)u32Pin, (int)u32Value);
        if ((pstGpio->u32Direction & (1u << u32Pin)) == 0)
            ReportTestError(Q7_SetGPIOPinState(hCal, u32Pin, u32Value));
        else
            printf(TEXT_SKIPPED_PIN "%d", (int)u32Pin);
        printf("\n");
    }
}

/* Reads register 30 of bank 0 immediately; the value stays as it was when the
 * read fails, and the result says whether it succeeded. */
static bool ReadTestRegister(CalInterfaceHandle hCal, uint32_t *pu32Data)
{
    return !ReportTestError(Q7_ReadRFICRegister(hCal, 0, TEST_REGISTER, 1, pu32Data));
}

static void WriteTestRegister(CalInterfaceHandle hCal, uint32_t u32Data)
{
    ReportTestError(Q7_WriteRFICRegister(hCal, 0, TEST_REGISTER, u32Data, 1));
}

/* Write, wait, read back; the whole 32-bit word read must equal the value.
 * The line names the value written as given. Nothing once the session has
 * ended, and no verdict when it ends during the wait. */
static void CheckTestRegister(CalInterfaceHandle hCal, uint32_t u32Data, const char *sWritten)
{
    uint32_t u32Read = 0;

    if (SessionEnded())
        return;
    WriteTestRegister(hCal, u32Data);
    Q7_SleepMs(100);
    if (SessionEnded())
        return; /* a read-back without the settling time judges nothing */
    const bool bRead = ReadTestRegister(hCal, &u32Read);
    printf("Wrote %s to Reg 30 - Read back %04X - %s\n", sWritten, u32Read, Verdict(bRead && u32Read == u32Data));
}

/* After the session has ended: the saved value back in register 30,
 * confirmed by reading it, or a WARNING that says what it holds. */
static void RestoreTestRegister(CalInterfaceHandle hCal, uint32_t u32Saved)
{
    uint32_t u32Read = 0;
    (void)Q7_WriteRFICRegister(hCal, 0, TEST_REGISTER, u32Saved, 1);
    if (Q7_ReadRFICRegister(hCal, 0, TEST_REGISTER, 1, &u32Read) != NULL || u32Read != u32Saved)
        PrintDeviceNotice("WARNING: Reg 30 is not restored: it reads %04X\n", u32Read);
}

static void RunLedPinSection(CalInterfaceHandle hCal)
{
    GpioState stGpio = {0, 0, 0};

    PrintTestHeading(TEXT_OTHER_GROUP);
    ReadGpio(hCal, &stGpio);
    PrintGpioState(&stGpio);
    const uint32_t u32WritePermission = ~stGpio.u32Direction & LED_PIN_MASK; /* the LED pins that are outputs */
    printf("\nSetting GPIO write permission to %08X\n\n", u32WritePermission);
    ReportTestError(Q7_SetGPIOConfiguration(hCal, u32WritePermission));
    ReadGpio(hCal, &stGpio);
    printf("\n");
    PrintGpioState(&stGpio);

    if (SessionEnded())
        return;

    /* The verdicts look at all three LED pins, a skipped input pin too. */
    SetLedPins(hCal, &stGpio, 0);
    bool bRead = ReadGpio(hCal, &stGpio);
    printf("GPIO LED write 0 test: %s\n\n", Verdict(bRead && (stGpio.u32PinState & LED_PIN_MASK) == 0));
    printf("\n");
    PrintGpioState(&stGpio);
    if (SessionEnded())
        return;
    SetLedPins(hCal, &stGpio, 1);
    bRead = ReadGpio(hCal, &stGpio);
    printf("GPIO LED write 1 test: %s\n\n", Verdict(bRead && (stGpio.u32PinState & LED_PIN_MASK) == LED_PIN_MASK));

    if (SessionEnded())
        return;
    /* The permission read at the start is not restored. */
    printf(TEXT_ERRORS_EXPECTED "\n");
    ReportTestError(Q7_SetGPIOConfiguration(hCal, 0));
    ReadGpio(hCal, &stGpio);
    printf("\n");
    PrintGpioState(&stGpio);
    SetLedPins(hCal, &stGpio, 0);
    ReadGpio(hCal, &stGpio);
    printf("\n");
    PrintGpioState(&stGpio);
}

static void RunRficRegisterSection(CalInterfaceHandle hCal)
{
    uint32_t u32ChipId = 0;
    uint32_t u32Saved = 0;
    uint32_t u32Read = 0;

    PrintTestHeading(TEXT_RFIC_READ_SECTION);
    ReportTestError(Q7_ReadRFICRegister(hCal, 0, 0, 1, &u32ChipId));
    printf("RFIC ID = %04X\n", u32ChipId);

    PrintTestHeading(TEXT_RFIC_WRITE_SECTION);
    const bool bSaved = !ReportTestError(Q7_ReadRFICRegister(hCal, 0, TEST_REGISTER, 1, &u32Saved));
    CheckTestRegister(hCal, 0x0000, "0x0000");
    CheckTestRegister(hCal, 0x0000, "0x0000");
    CheckTestRegister(hCal, 0xFFFF, "0xffff");
    /* The restore: a value that could not be read is not written back. Once
     * the session has ended, the value goes back without a verdict. */
    if (!bSaved) {
        printf("Reg 30 not restored: it could not be read at the start\n");
        return;
    }
    if (SessionEnded()) {
        RestoreTestRegister(hCal, u32Saved);
        return;
    }
    WriteTestRegister(hCal, u32Saved);
    const bool bRead = ReadTestRegister(hCal, &u32Read);
    Q7_SleepMs(100);
    printf("Wrote 0x%04X to Reg 30 - Read back %04X - %s\n", u32Saved, u32Read,
           Verdict(bRead && u32Read == u32Saved));
}

static void RunGpAdcAndDacSection(CalInterfaceHandle hCal)
{
    PrintTestHeading(TEXT_GP_ADC_DAC_SECTION);
    printf(TEXT_ADC_LINE);
    for (uint32_t u32Mux = 0; u32Mux <= 3; u32Mux++) {
        uint32_t u32Value = 0; /* zero when the read fails */
        ReportTestError(Q7_GetGPADCValue(hCal, u32Mux, &u32Value));
        printf(" %02X", u32Value);
    }
    printf("\n");
    printf("Testing Set GP DAC Value ");
    for (uint32_t u32Mux = 0; u32Mux <= 3; u32Mux++) {
        printf(" %u", u32Mux);
        ReportTestError(Q7_SetGPDACValue(hCal, u32Mux, 1.67));
    }
    printf("\n\n");
}

int AutomatedOtherCommandGroupTest(CalInterfaceHandle hCal)
{
    RunLedPinSection(hCal);
    if (SessionEnded())
        return -1;
    RunRficRegisterSection(hCal);
    if (SessionEnded())
        return -1;
    PrintTestHeading(TEXT_TEMPERATURE_SECTION);
    (void)TestGetTemperature(hCal);
    if (SessionEnded())
        return -1;
    RunGpAdcAndDacSection(hCal);
    PressEnterToContinue(); /* the engineer reads the results before the spectrum */
    if (SessionEnded())
        return -1;

    PrintTestHeading(TEXT_SPECTRUM_SECTION);
    printf("\nResetRxSpectrum\n");
    printf("Setting shift for IIR filter alpha to 3\n");
    printf("Setting symbol index to be captured to 1");
    if (ReportError(Q7_ResetRxSpectrum(hCal, 3, 1)))
        return -1;
    (void)TestGetRxSpectrum(hCal);
    PrintTestHeading(TEXT_VERSION_SECTION);
    (void)TestGetVersionInfo(hCal);
    return 0;
}
