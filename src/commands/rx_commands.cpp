/* Rx Commands: antenna configuration, sync, AGC, gain states and the receive
 * measurements (RSSI, CINR, thermal noise, frame error statistics). */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

/* A frames-in-error count with every bit set: the device has no count. */
#define FRAMES_IN_ERROR_UNAVAILABLE 0xFFFFFFFFu

static const char *RxAntConfigName(uint32_t u32RxAntConfig)
{
    static const char *const asNames[] = {"Rx1 only", "Rx2 only", "Rx1 + Rx2"};
    return u32RxAntConfig < sizeof asNames / sizeof asNames[0] ? asNames[u32RxAntConfig] : "Unknown value";
}

/* Every state above medium is the high one. */
static const char *FrontEndGainStateName(uint32_t u32FrontEndGainState)
{
    if (u32FrontEndGainState == 0)
        return "Low    (Max gain - 26 dB)";
    if (u32FrontEndGainState == 1)
        return "Medium (Max gain - 12 dB)";
    return "High   (Max gain)";
}

/* The share of clipped samples in percent: infinity or not-a-number when
 * the device counted no samples. */
static double ClipPercent(uint32_t u32ClipCount, uint32_t u32AdcSamples)
{
    return (double)u32ClipCount * 100.0 / (double)u32AdcSamples;
}

int TestGetRxAntConfig(CalInterfaceHandle hCal)
{
    uint32_t u32RxAntConfig = 0;

    if (!BeginCommand(hCal, "\nGetRxAntConfig:") || ReportError(Q7_GetRxAntConfig(hCal, &u32RxAntConfig)))
        return -1;
    printf("    RxAntConfig = %s\n", RxAntConfigName(u32RxAntConfig));
    return ReportSuccess("GetRxAntConfig");
}

int TestSetRxAntConfig(CalInterfaceHandle hCal)
{
    uint32_t u32RxAntConfig = 0;

    if (!BeginCommand(hCal, "\nSetRxAntConfig:"))
        return -1;
    puts("Rx ant config: 0 = Rx1 only; 1 = Rx2 only; 2 = Rx1+Rx2");
    if (!ReadUnsigned(&u32RxAntConfig, "    Rx antenna configuration ? "))
        return -1;
    return ReportOutcome(Q7_SetRxAntConfig(hCal, u32RxAntConfig), "SetRxAntConfig");
}

int TestIsSync(CalInterfaceHandle hCal)
{
    double dFreqOffsetPpm = 0.0;
    uint32_t u32SyncFreqKHz = 0;
    uint32_t u32SyncStatus = 0;

    if (!BeginCommand(hCal, "\nIsSync:"))
        return -1;
    if (ReportError(Q7_IsSync(hCal, &dFreqOffsetPpm, &u32SyncFreqKHz, &u32SyncStatus)))
        return -1;
    printf("    " TEXT_FREQUENCY_OFFSET " = %0.3f\n", dFreqOffsetPpm);
    printf("    Sync frequency (kHz)   = %u\n", u32SyncFreqKHz);
    printf("    " TEXT_SYNC_STATUS "            = %s\n", u32SyncStatus != 0 ? TEXT_SYNC_ACHIEVED : TEXT_SYNC_NOT_ACHIEVED);
    return ReportSuccess("IsSync");
}

int TestForceReSync(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nForce Re-sync:"))
        return -1;
    return ReportOutcome(Q7_ForceReSync(hCal), "ForceReSync");
}

int TestSetAGCMode(CalInterfaceHandle hCal)
{
    uint32_t u32AgcMode = 0;
    uint32_t u32AgcBackoffDb = 0;

    if (!BeginCommand(hCal, "\nSetAGCMode:"))
        return -1;
    puts("AGC mode:    0=Normal, 1=Back off AGC, 2=Freeze AGC");
    puts("AGC backoff: 0 to 64 dB, in 1 dB steps (enter as decimal integer)");
    if (!ReadUnsigned(&u32AgcMode, "    AGC mode                ? ") ||
        !ReadUnsigned(&u32AgcBackoffDb, "    AGC backoff in dB (dec) ? "))
        return -1;
    return ReportOutcome(Q7_SetAGCMode(hCal, u32AgcMode, u32AgcBackoffDb), "SetAGCMode");
}

int TestGetRxGainState(CalInterfaceHandle hCal)
{
    uint32_t u32RxPath = 0;
    uint32_t u32ExtLna = 0;
    uint32_t u32FrontEndGainState = 0;
    int32_t i32PgaGainIndex = 0;
    double dTotalGain = 0.0;

    if (!BeginCommand(hCal, "\nGetRxGainState:"))
        return -1;
    if (!ReadUnsigned(&u32RxPath, "    Rx path (0=Rx1; 1=Rx2) ? "))
        return -1;
    if (ReportError(
            Q7_GetRxGainState(hCal, u32RxPath, &u32ExtLna, &u32FrontEndGainState, &i32PgaGainIndex, &dTotalGain)))
        return -1;
    printf("    External LNA   = %s (%u)\n", EnabledText(u32ExtLna), u32ExtLna);
    printf("    Front End gain state   = %s (%u)\n", FrontEndGainStateName(u32FrontEndGainState),
           u32FrontEndGainState);
    printf("    PGA gain index = %d\n", i32PgaGainIndex);
    printf("    Total gain     = %g\n", dTotalGain);
    return ReportSuccess("GetRxGainState");
}

int TestSetRxGainState(CalInterfaceHandle hCal)
{
    uint32_t u32RxPath = 0;
    uint32_t u32ExtLna = 0;
    uint32_t u32FrontEndGainState = 0;
    int32_t i32PgaGainIndex = 0;

    if (!BeginCommand(hCal, "\nSetRxGainState:"))
        return -1;
    if (!ReadUnsigned(&u32RxPath, "    Rx path (0=Rx1; 1=Rx2; 2=Rx1 & Rx2)? ") ||
        !ReadUnsigned(&u32ExtLna, "    Enable external LNA (1=yes; 0=no)  ? "))
        return -1;
    puts("  For Front End gain state, please enter: ");
    puts("                                  0=Low  (max gain - 26 dB)");
    puts("                                  1=middle  (max gain - 12 dB)");
    puts("                                  2=high    (max gain)");
    if (!ReadUnsigned(&u32FrontEndGainState, "    LNA gain                           ? "))
        return -1;
    puts("  Please enter the PGA gain as an even integer (dec)");
    if (!ReadSigned(&i32PgaGainIndex, "    PGA gain index (0 to 31)           ? "))
        return -1;
    return ReportOutcome(Q7_SetRxGainState(hCal, u32RxPath, u32ExtLna, u32FrontEndGainState, i32PgaGainIndex),
                         "SetRxGainState");
}

int TestGetRSSIReport(CalInterfaceHandle hCal)
{
    double dRx1RssiDbm = 0.0;
    double dRx2RssiDbm = 0.0;
    double dCombinedRssiDbm = 0.0;
    double dRx1AdcPowerDbm = 0.0;
    double dRx2AdcPowerDbm = 0.0;
    uint32_t u32Rx1ClipCount = 0;
    uint32_t u32Rx2ClipCount = 0;
    uint32_t u32AdcSamples = 0;

    if (!BeginCommand(hCal, "\nGetRSSIReport:"))
        return -1;
    if (ReportError(Q7_GetRSSIReport(hCal, &dRx1RssiDbm, &dRx2RssiDbm, &dCombinedRssiDbm, &dRx1AdcPowerDbm,
                                     &dRx2AdcPowerDbm, &u32Rx1ClipCount, &u32Rx2ClipCount, &u32AdcSamples)))
        return -1;
    printf("    " TEXT_RX1_RSSI "              = %7.2f dBm\n", dRx1RssiDbm);
    printf("    " TEXT_RX2_RSSI "              = %7.2f dBm\n", dRx2RssiDbm);
    printf("    " TEXT_COMBINED_RSSI "         = %7.2f dBm\n", dCombinedRssiDbm);
    printf("    " TEXT_RX1_ADC_POWER "   = %7.2f dBm\n", dRx1AdcPowerDbm);
    printf("    " TEXT_RX2_ADC_POWER "   = %7.2f dBm\n", dRx2AdcPowerDbm);
    printf("    Rx1 ADC clip count    = %u (%0.2f %%)\n", u32Rx1ClipCount, ClipPercent(u32Rx1ClipCount, u32AdcSamples));
    printf("    Rx2 ADC clip count    = %u (%0.2f %%)\n", u32Rx2ClipCount, ClipPercent(u32Rx2ClipCount, u32AdcSamples));
    printf("    Number of ADC samples = %u\n", u32AdcSamples);
    return ReportSuccess("GetRSSIReport");
}

int TestGetCINR(CalInterfaceHandle hCal)
{
    double dCombinedCinrDb = 0.0;
    double dAnt1CinrDb = 0.0;
    double dAnt2CinrDb = 0.0;

    if (!BeginCommand(hCal, "\nGetCINR:"))
        return -1;
    if (ReportError(Q7_GetCINR(hCal, &dCombinedCinrDb, &dAnt1CinrDb, &dAnt2CinrDb)))
        return -1;
    printf("    " TEXT_COMBINED_CINR "  = %0.2f dB\n", dCombinedCinrDb);
    printf("    " TEXT_ANTENNA1_CINR " = %0.2f dB\n", dAnt1CinrDb);
    printf("    " TEXT_ANTENNA2_CINR " = %0.2f dB\n", dAnt2CinrDb);
    return ReportSuccess("GetCINR");
}

int TestGetPerAntThermalNoise(CalInterfaceHandle hCal)
{
    double dAnt1NoiseDbm = 0.0;
    double dAnt2NoiseDbm = 0.0;

    if (!BeginCommand(hCal, "\nGetPerAntThermalNoise:"))
        return -1;
    if (ReportError(Q7_GetPerAntThermalNoise(hCal, &dAnt1NoiseDbm, &dAnt2NoiseDbm)))
        return -1;
    printf("    " TEXT_ANTENNA1_NOISE " = %0.2f dBm\n", dAnt1NoiseDbm);
    printf("    " TEXT_ANTENNA2_NOISE " = %0.2f dBm\n", dAnt2NoiseDbm);
    return ReportSuccess("GetPerAntThermalNoise");
}

int TestResetFrameErrorStatistics(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nResetFrameErrorStatistics:"))
        return -1;
    return ReportOutcome(Q7_ResetFrameErrorStatistics(hCal), "ResetFrameErrorStatistics");
}

int TestGetFrameErrorStatistics(CalInterfaceHandle hCal)
{
    uint32_t u32TotalFrames = 0;
    uint32_t u32FramesInError = 0;

    if (!BeginCommand(hCal, "\nGetFrameErrorStatistics:"))
        return -1;
    if (ReportError(Q7_GetFrameErrorStatistics(hCal, &u32TotalFrames, &u32FramesInError)))
        return -1;
    printf("    Total frames elapsed  = %u\n", u32TotalFrames);
    printf("    Frames in error       = ");
    if (u32FramesInError == FRAMES_IN_ERROR_UNAVAILABLE)
        printf("N/A\n");
    else
        printf("%u\n", u32FramesInError);
    return ReportSuccess("GetFrameErrorStatistics");
}
