/* Configuration Commands: connection, device mode and band configuration. */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"
#include "printed_texts.h"

static const char *DutModeName(uint32_t u32DutMode)
{
    static const char *const asNames[] = {"Normal", "Calibration", "Tx CW", "Tx OFDMA", "AGC free-run", "Loopback"};
    return u32DutMode < sizeof asNames / sizeof asNames[0] ? asNames[u32DutMode] : "Unknown DUT Mode";
}

static const char *ModulationTypeName(uint32_t u32ModulationType)
{
    static const char *const asNames[] = {"4 QAM", "16 QAM", "64 QAM"};
    return u32ModulationType < sizeof asNames / sizeof asNames[0] ? asNames[u32ModulationType]
                                                                  : "Unknown modulation type";
}

static const char *LoopbackTxName(uint32_t u32LoopbackTx)
{
    static const char *const asNames[] = {"neither TX1 nor TX2 enabled", "TX1", "TX2", "Both TX1 and TX2"};
    return u32LoopbackTx < sizeof asNames / sizeof asNames[0] ? asNames[u32LoopbackTx] : "Unknown Transmitter";
}

int TestConnectDevice(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nConnectDevice:"))
        return -1;
    if (ReportError(Q7_ConnectDevice(hCal)))
        return -1;
    printf(TEXT_DEVICE_CONNECTED "\n");
    return 0;
}

int TestDisconnectDevice(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nDisconnectDevice:"))
        return -1;
    if (ReportError(Q7_DisconnectDevice(hCal)))
        return -1;
    printf(TEXT_DEVICE_DISCONNECTED "\n");
    return 0;
}

int TestGetDeviceMode(CalInterfaceHandle hCal)
{
    uint32_t u32DutMode = 0;
    uint32_t u32ModulationType = 0;
    int32_t i32CwOffsetKHz = 0;
    uint32_t u32LoopbackTx = 0;

    if (!BeginCommand(hCal, "\nGetDeviceMode:"))
        return -1;
    if (ReportError(Q7_GetDeviceMode(hCal, &u32DutMode, &u32ModulationType, &i32CwOffsetKHz, &u32LoopbackTx)))
        return -1;
    /* Names are looked up unsigned; the numbers print signed. */
    printf("    DUT Mode        = %s (%d)\n", DutModeName(u32DutMode), (int32_t)u32DutMode);
    printf("    Modulation type = %s (%d)\n", ModulationTypeName(u32ModulationType), (int32_t)u32ModulationType);
    printf("\tCW Offset  = %d KHz\n", i32CwOffsetKHz);
    printf("\tLoopback =%s( %d)\n", LoopbackTxName(u32LoopbackTx), (int32_t)u32LoopbackTx);
    return ReportSuccess("GetDeviceMode");
}

int TestSetDeviceMode(CalInterfaceHandle hCal)
{
    uint32_t u32DutMode = 0;
    uint32_t u32ModulationType = 0;
    int32_t i32CwOffsetKHz = 0;
    uint32_t u32LoopbackTx = 0;

    if (!BeginCommand(hCal, "\nSetDeviceMode:"))
        return -1;
    puts("For DUT Mode, please enter: 0=Normal  1=Calibration  2=Tx CW  3=Tx OFDMA  4=AGC free-run 5=Loopback");
    if (!ReadUnsigned(&u32DutMode, "    DUT Mode        ? "))
        return -1;
    puts("For Modulation Type, please enter: 0=4 QAM  1=16 QAM  2=64 QAM");
    if (!ReadUnsigned(&u32ModulationType, "    Modulation Type ? "))
        return -1;
    if (!ReadSigned(&i32CwOffsetKHz, "\tCW Offset in KHz between -10 to 10 KHz ? "))
        return -1;
    puts("For Loopback Tx, please enter: 0=Disable both  1=Tx1 2=Tx2 3=Both Enabled");
    if (!ReadUnsigned(&u32LoopbackTx, "\tLoopbackTX ? "))
        return -1;
    return ReportOutcome(Q7_SetDeviceMode(hCal, u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx),
                         "SetDeviceMode");
}

int TestGetBandConfig(CalInterfaceHandle hCal)
{
    uint32_t u32CenterFreqKHz = 0;
    uint32_t u32BandwidthKHz = 0;

    if (!BeginCommand(hCal, "\nGetBandConfig:"))
        return -1;
    if (ReportError(Q7_GetBandConfig(hCal, &u32CenterFreqKHz, &u32BandwidthKHz)))
        return -1;
    printf("    Center frequency (kHz)  = %u\n", u32CenterFreqKHz);
    printf("    Bandwidth (kHz)         = %u\n", u32BandwidthKHz);
    return ReportSuccess("GetBandConfig");
}

int TestSetBandConfig(CalInterfaceHandle hCal)
{
    uint32_t u32CenterFreqKHz = 0;
    uint32_t u32BandwidthKHz = 0;

    if (!BeginCommand(hCal, "\nSetBandConfig:"))
        return -1;
    if (!ReadUnsigned(&u32CenterFreqKHz, "    Center frequency (kHz)  ? ") ||
        !ReadUnsigned(&u32BandwidthKHz, "    Bandwidth (kHz)         ? "))
        return -1;
    return ReportOutcome(Q7_SetBandConfig(hCal, u32CenterFreqKHz, u32BandwidthKHz), "SetBandConfig");
}
