/* The loopback group test of the automated run: the loopback calibrations
 * with fixed parameters, stopped at the first failing one. */
#include <stdio.h>

#include "automated.h"
#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

/* Ends the group after a failed calibration: the error, then one pop for
 * each of the group's own pushes still in force. (Once the session has ended
 * the group just returns, and the driver pops what it left pushed.) */
static int StopLoopbackGroup(CalInterfaceHandle hCal, ApiStatus status, uint32_t u32Pushes)
{
    ReportError(status);
    for (uint32_t i = 0; i < u32Pushes; i++)
        PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    return -1;
}

int AutomatedLoopbackGroupTest(CalInterfaceHandle hCal)
{
    ApiStatus status = NULL;
    double adPgaGainCorrection[2] = {0.0, 0.0};
    double adLnaMidGainStep[2] = {0.0, 0.0};
    double adLnaHighGainStep[2] = {0.0, 0.0};
    double adLnaExtGainStep[2] = {0.0, 0.0};
    double adTxExtAttnSteps[Q7_TX_EXT_ATTN_STEPS] = {0.0};

    printf("\n");
    PrintTestHeading(TEXT_LOOPBACK_GROUP);
    PushDeviceMode(hCal, 5, 0, 1000, 0); /* Loopback, 4 QAM */
    (void)Q7_SetTRSwitch(hCal, 0, 0);   /* both antennas Tx off, Rx on */
    (void)TestCalibrateLCTrim(hCal);
    if (SessionEnded())
        return -1;

    printf("\nCalibrate Tx Pout frequency correction:\n");
    printf("Setting frequency index 5\n");
    /* Announcements only: the operation takes the frequency index alone. */
    printf("Setting correction value to 0 dB\n");
    printf("Setting cable losses to 20 dB\n");
    status = Q7_CalibrateTxPoutFreqCorr(hCal, 5);
    if (status != NULL)
        return StopLoopbackGroup(hCal, status, 1);
    if (SessionEnded())
        return -1;

    PushDeviceMode(hCal, 4, 0, 1000, 0); /* AGC free-run, 4 QAM */
    printf("\nCalibrate FE Steps:\n");
    printf("Scan list index for the center frequency set to 5\n");
    printf("Amplitude of signal in dBm at RX1 and RX2 antennas set to -40 dBm\n");
    status = Q7_CalibrateFESteps(hCal, 5, -40.0, -40.0, adPgaGainCorrection, adLnaMidGainStep, adLnaHighGainStep,
                                 adLnaExtGainStep);
    if (status != NULL)
        return StopLoopbackGroup(hCal, status, 2);
    PrintFEStepTable(adPgaGainCorrection, adLnaMidGainStep, adLnaHighGainStep, adLnaExtGainStep);
    PopDeviceMode(hCal, NULL, NULL, NULL, NULL); /* back to Loopback */
    if (SessionEnded())
        return -1;

    printf("\nCalibrate Tx external attenuator step:\n");
    printf("Active Transmitter set to 0\n");
    status = Q7_CalibrateTxExtAttnStep(hCal, 0, adTxExtAttnSteps);
    if (status != NULL)
        return StopLoopbackGroup(hCal, status, 1);
    PrintTxExtAttnSteps(adTxExtAttnSteps);

    PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    return 0;
}
