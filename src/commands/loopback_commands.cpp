/* Loopback Calibration Commands: the TR switches and the five loopback
 * calibrations. The headings of this group follow the menu input directly,
 * without a blank line above them. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

void PrintFEStepTable(const double adPgaGainCorrection[2], const double adLnaMidGainStep[2],
                      const double adLnaHighGainStep[2], const double adLnaExtGainStep[2])
{
    printf("\n");
    printf("                      %6s %6s\n", "Rx1", "Rx2");
    printf(TEXT_PGA_GAIN_CORRECTION " = %6.2f %6.2f dB\n", adPgaGainCorrection[0], adPgaGainCorrection[1]);
    printf(TEXT_LNA_MID_GAIN_STEP "   = %6.2f %6.2f dB\n", adLnaMidGainStep[0], adLnaMidGainStep[1]);
    printf(TEXT_LNA_HIGH_GAIN_STEP "  = %6.2f %6.2f dB\n", adLnaHighGainStep[0], adLnaHighGainStep[1]);
    printf(TEXT_LNA_EXT_GAIN_STEP "   = %6.2f %6.2f dB\n", adLnaExtGainStep[0], adLnaExtGainStep[1]);
}

void PrintTxExtAttnSteps(const double adSteps[Q7_TX_EXT_ATTN_STEPS])
{
    printf("\n");
    for (uint32_t i = 0; i < Q7_TX_EXT_ATTN_STEPS; i++)
        printf(TEXT_TX_EXT_ATTN_STEP "[%2d] = %5.2f dB\n", (int)i, adSteps[i]);
}

int TestSetTRSwitch(CalInterfaceHandle hCal)
{
    uint32_t u32Ant1State = 0;
    uint32_t u32Ant2State = 0;

    if (!BeginCommand(hCal, "Set TR Switch:"))
        return -1;
    if (!ReadUnsigned(&u32Ant1State, "Please specify the state for  the Antenna 1 TR switch state: "
                                     "0 = Tx1 off and Rx1 on  & 1 = Tx1 on and Rx1 off:") ||
        !ReadUnsigned(&u32Ant2State, "Please specify the state for  the Antenna 2 TR switch state: "
                                     "0 = Tx2 off and Rx2 on  & 1 = Tx2 on and Rx2 off:"))
        return -1;
    return ReportOutcome(Q7_SetTRSwitch(hCal, u32Ant1State, u32Ant2State), "SetAntenaTRState");
}

int TestCalibrateLCTrim(CalInterfaceHandle hCal)
{
    int32_t LCTrimArray[Q7_LC_TRIM_ENTRIES] = {0};
    uint32_t u32Count = 0;

    if (!BeginCommand(hCal, "Calibrate LC Trim:"))
        return -1;
    if (ReportError(Q7_CalibrateLCTrim(hCal, LCTrimArray, &u32Count)))
        return -1;
    /* The count line shows what the device reported; the list never goes
     * beyond the 12 entries of the array. */
    printf("\n " TEXT_LC_TRIM_COUNT "=%u", u32Count);
    printf("\n");
    for (uint32_t i = 0; i < u32Count && i < Q7_LC_TRIM_ENTRIES; i++)
        printf(TEXT_LC_TRIM "[%d] = %d\n", (int)i, LCTrimArray[i]);
    return ReportSuccess("CalibrateLCTrim");
}

int TestCalibrateTxGains(CalInterfaceHandle hCal)
{
    double adTxGainArray[Q7_TX_GAIN_ENTRIES] = {0};
    uint32_t u32TxSelector = 0;
    uint32_t u32CenterFreqKHz = 0;

    if (!BeginCommand(hCal, "Calibrate TX Steps:"))
        return -1;
    if (!ReadUnsigned(&u32TxSelector, "0 = current active transmitter\t1 = TX1 2 = TX2 3 =TX1 & TX2: ") ||
        !ReadUnsigned(&u32CenterFreqKHz, "The center frequency in kHz: "))
        return -1;
    if (ReportError(Q7_CalibrateTxGains(hCal, u32TxSelector, u32CenterFreqKHz, adTxGainArray)))
        return -1;
    printf("\n");
    for (uint32_t i = 0; i < Q7_TX_GAIN_ENTRIES; i++)
        printf("adTxGainArray[%2d] = %5.2f dB\n", (int)i, adTxGainArray[i]);
    return ReportSuccess("CalibrateTxGains");
}

int TestCalibrateTxPoutFreqCorr(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "Calibrate Tx Pout frequency correction:") ||
        !ReadUnsigned(&u32Value, "Please specify index of frequency in scan list [0:11]: "))
        return -1;
    return ReportOutcome(Q7_CalibrateTxPoutFreqCorr(hCal, u32Value), "CalibrateTxPoutFreqCorr");
}

int TestCalibrateFESteps(CalInterfaceHandle hCal)
{
    uint32_t u32ScanListIndex = 0;
    double dRx1AmplitudeDbm = 0.0;
    double dRx2AmplitudeDbm = 0.0;
    double adPgaGainCorrection[2] = {0.0, 0.0};
    double adLnaMidGainStep[2] = {0.0, 0.0};
    double adLnaHighGainStep[2] = {0.0, 0.0};
    double adLnaExtGainStep[2] = {0.0, 0.0};

    if (!BeginCommand(hCal, "Calibrate FE Steps:"))
        return -1;
    if (!ReadUnsigned(&u32ScanListIndex, "Please specify the scan list index for the center frequency: ") ||
        !ReadDouble(&dRx1AmplitudeDbm, "Amplitude of signal in dBm at RX1 antenna: ") ||
        !ReadDouble(&dRx2AmplitudeDbm, "Amplitude of signal in dBm at RX2 antenna: "))
        return -1;
    if (ReportError(Q7_CalibrateFESteps(hCal, u32ScanListIndex, dRx1AmplitudeDbm, dRx2AmplitudeDbm,
                                        adPgaGainCorrection, adLnaMidGainStep, adLnaHighGainStep,
                                        adLnaExtGainStep)))
        return -1;
    PrintFEStepTable(adPgaGainCorrection, adLnaMidGainStep, adLnaHighGainStep, adLnaExtGainStep);
    return ReportSuccess("CalibrateFESteps");
}

int TestCalibrateTxExtAttnStep(CalInterfaceHandle hCal)
{
    double adSteps[Q7_TX_EXT_ATTN_STEPS] = {0};
    uint32_t u32TxSelector = 0;

    if (!BeginCommand(hCal, "Calibrate Tx external attenuator step:"))
        return -1;
    if (!ReadUnsigned(&u32TxSelector, TX_SELECTOR_PROMPT))
        return -1;
    if (ReportError(Q7_CalibrateTxExtAttnStep(hCal, u32TxSelector, adSteps)))
        return -1;
    PrintTxExtAttnSteps(adSteps);
    return ReportSuccess("CalibrateTxExtAttnStep");
}
