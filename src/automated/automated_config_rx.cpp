/* The configuration and Rx group tests of the automated run. */
#include <stdio.h>

#include "automated.h"
#include "commands.h"
#include "console.h"
#include "host_time.h"
#include "printed_texts.h"

/* One band write/read-back check, with its write line; nothing once the
 * session has ended, and no verdict when it ends during the wait. */
static void CheckBandConfig(CalInterfaceHandle hCal, uint32_t u32FreqKHz, uint32_t u32BandwidthKHz)
{
    uint32_t u32ReadFreqKHz = 0;
    uint32_t u32ReadBandwidthKHz = 0;

    if (SessionEnded())
        return;
    printf("Write: Freq = %7u - BW = %5u\n", u32FreqKHz, u32BandwidthKHz);
    ReportTestError(Q7_SetBandConfig(hCal, u32FreqKHz, u32BandwidthKHz));
    (void)Q7_ForceReSync(hCal);
    Q7_SleepMs(500);
    if (SessionEnded())
        return; /* a read-back without the settling time judges nothing */
    const bool bRead = !ReportTestError(Q7_GetBandConfig(hCal, &u32ReadFreqKHz, &u32ReadBandwidthKHz));
    printf("Read:  Freq = %7u - BW = %5u ", u32ReadFreqKHz, u32ReadBandwidthKHz);
    printf("%s\n", Verdict(bRead && u32ReadFreqKHz == u32FreqKHz && u32ReadBandwidthKHz == u32BandwidthKHz));
}

/* After the session has ended: the band back, confirmed by reading it, or a
 * WARNING that says where the device was left. */
static void RestoreBandConfig(CalInterfaceHandle hCal, uint32_t u32FreqKHz, uint32_t u32BandwidthKHz)
{
    uint32_t u32ReadFreqKHz = 0;
    uint32_t u32ReadBandwidthKHz = 0;

    (void)Q7_SetBandConfig(hCal, u32FreqKHz, u32BandwidthKHz);
    if (Q7_GetBandConfig(hCal, &u32ReadFreqKHz, &u32ReadBandwidthKHz) != NULL || u32ReadFreqKHz != u32FreqKHz ||
        u32ReadBandwidthKHz != u32BandwidthKHz)
        PrintDeviceNotice("WARNING: The band configuration is not restored: Freq = %u - BW = %u\n", u32ReadFreqKHz,
                          u32ReadBandwidthKHz);
}

int AutomatedConfigurationGroupTest(CalInterfaceHandle hCal)
{
    /* The band in force at the start, restored by the last check. */
    uint32_t u32SavedFreqKHz = 0;
    uint32_t u32SavedBandwidthKHz = 0;

    printf("\n");
    PrintTestHeading(TEXT_CONFIGURATION_GROUP);
    PrintTestHeading(TEXT_DEVICE_MODE_SECTION);
    /* The engineer compares each reported mode with the pushed one. */
    for (uint32_t u32DutMode = 0; u32DutMode <= 5; u32DutMode++) {
        if (SessionEnded())
            return 0;
        printf("\n");
        PushDeviceMode(hCal, u32DutMode, 1, 1000, 0);
        (void)TestGetDeviceMode(hCal);
        PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    }
    if (SessionEnded())
        return 0;

    PushDeviceMode(hCal, 4, 1, 1000, 0); /* AGC free-run for the band checks */
    PrintTestHeading(TEXT_BAND_SECTION);
    const bool bSaved = !ReportTestError(Q7_GetBandConfig(hCal, &u32SavedFreqKHz, &u32SavedBandwidthKHz));
    printf("Read:  Freq = %7u - BW = %5u\n", u32SavedFreqKHz, u32SavedBandwidthKHz);

    CheckBandConfig(hCal, 2500000, 10000);
    CheckBandConfig(hCal, 2533500, 5000);
    /* A band that could not be read is not written back: the zeros the
     * locals hold are no band the device was ever in. Once the session has
     * ended, the band goes back without a check. */
    if (!bSaved)
        printf("Band not restored: it could not be read at the start\n");
    else if (SessionEnded())
        RestoreBandConfig(hCal, u32SavedFreqKHz, u32SavedBandwidthKHz);
    else
        CheckBandConfig(hCal, u32SavedFreqKHz, u32SavedBandwidthKHz);

    PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    return 0;
}

/* Writes a new gain state to one receive path (each setting moved to its next
 * value) and checks it by reading back; the total gain is only shown. */
static void CheckRxGainState(CalInterfaceHandle hCal, uint32_t u32Path)
{
    /* Zero when a read fails: the step still writes and judges. */
    uint32_t u32ExtLna = 0;
    uint32_t u32FeGainState = 0;
    int32_t i32PgaIndex = 0;
    double dTotalGain = 0.0;

    if (SessionEnded())
        return;
    ReportTestError(Q7_GetRxGainState(hCal, u32Path, &u32ExtLna, &u32FeGainState, &i32PgaIndex, &dTotalGain));
    printf("Read  path %u: Ext LNA=%u - LNA=%u - PGA=%2u - Total=%g\n", u32Path, u32ExtLna, u32FeGainState,
           (uint32_t)i32PgaIndex, dTotalGain);

    const uint32_t u32NewExtLna = 1 - u32ExtLna;
    const uint32_t u32NewFeGainState = (u32FeGainState + 1) % 3;
    const uint32_t u32NewPgaIndex = ((uint32_t)i32PgaIndex + 5) & 0x1F;
    printf("Wrote path %u: Ext LNA=%u - LNA=%u - PGA=%2u\n", u32Path, u32NewExtLna, u32NewFeGainState,
           u32NewPgaIndex);
    ReportTestError(Q7_SetRxGainState(hCal, u32Path, u32NewExtLna, u32NewFeGainState, (int32_t)u32NewPgaIndex));

    uint32_t u32ReadExtLna = 0;
    uint32_t u32ReadFeGainState = 0;
    int32_t i32ReadPgaIndex = 0;
    const bool bRead = !ReportTestError(
        Q7_GetRxGainState(hCal, u32Path, &u32ReadExtLna, &u32ReadFeGainState, &i32ReadPgaIndex, &dTotalGain));
    printf("Read  path %u: Ext LNA=%u - LNA=%u -PGA=%2u - Total=%g -- ", u32Path, u32ReadExtLna,
           u32ReadFeGainState, (uint32_t)i32ReadPgaIndex, dTotalGain);
    printf("%s\n\n", Verdict(bRead && u32ReadExtLna == u32NewExtLna && u32ReadFeGainState == u32NewFeGainState &&
                             (uint32_t)i32ReadPgaIndex == u32NewPgaIndex));
}

int AutomatedRxGroupTest(CalInterfaceHandle hCal)
{
    /* Zero when a read fails. */
    uint32_t u32DutMode = 0;
    uint32_t u32ModulationType = 0;
    int32_t i32CwOffsetKHz = 0;
    uint32_t u32LoopbackTx = 0;

    printf("\n");
    PrintTestHeading(TEXT_RX_GROUP);
    (void)TestGetRxAntConfig(hCal);
    printf("Setting to 0\n");
    ReportTestError(Q7_SetRxAntConfig(hCal, 0));
    (void)TestGetRxAntConfig(hCal);
    printf("Setting to 2\n");
    ReportTestError(Q7_SetRxAntConfig(hCal, 2));
    (void)TestGetRxAntConfig(hCal);

    (void)TestIsSync(hCal);
    (void)TestForceReSync(hCal);
    if (SessionEnded())
        return 0;

    PrintTestHeading(TEXT_RX_GAIN_SECTION);
    (void)Q7_GetDeviceMode(hCal, &u32DutMode, &u32ModulationType, &i32CwOffsetKHz, &u32LoopbackTx);
    printf("Device mode \t= %u\n", u32DutMode);
    printf("Modulation type = %u\n", u32ModulationType);
    printf("CW Offset\t\t= %u KHz\n", (uint32_t)i32CwOffsetKHz);
    printf("Loopback Tx Type = %u\n", u32LoopbackTx);
    /* Calibration mode, set past the stack: the pop after the CINR read ends it. */
    (void)Q7_SetDeviceMode(hCal, 1, 0, 1000, 0);
    printf("Set dev mode\t\t= %u\n", 1u);
    printf("Set mod type\t\t= %u\n", 0u);
    printf("Set CW Offset\t\t= %u KHz\n", 1000u);
    printf("Set Loopback Tx Type= %u\n", 0u);
    (void)Q7_GetDeviceMode(hCal, &u32DutMode, &u32ModulationType, &i32CwOffsetKHz, &u32LoopbackTx);
    printf("Device mode \t\t= %u\n", u32DutMode);
    printf("Modulation type \t= %u\n", u32ModulationType);
    printf("CW Offset\t\t\t= %u KHz\n", (uint32_t)i32CwOffsetKHz);
    printf("Loopback Tx Type\t= %u\n", u32LoopbackTx);
    CheckRxGainState(hCal, 0);
    CheckRxGainState(hCal, 1);
    if (SessionEnded())
        return 0;

    PrintTestHeading(TEXT_RSSI_SECTION);
    (void)TestGetRSSIReport(hCal); /* still in Calibration mode */
    PushDeviceMode(hCal, 0, 0, 1000, 0); /* Normal, 4 QAM */
    (void)TestGetCINR(hCal);
    PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    PushDeviceMode(hCal, 4, 0, 1000, 0); /* AGC free-run, 4 QAM */
    (void)TestGetPerAntThermalNoise(hCal);
    PopDeviceMode(hCal, NULL, NULL, NULL, NULL);
    if (SessionEnded())
        return 0;

    PrintTestHeading(TEXT_FRAME_ERROR_SECTION);
    (void)TestGetFrameErrorStatistics(hCal);
    (void)TestResetFrameErrorStatistics(hCal);
    (void)TestGetFrameErrorStatistics(hCal);
    return 0;
}
