/* Tx Commands: attenuator chain, output power, diversity switch, active
 * transmitters, and the low-level words and controls (backoff, GC and Phi
 * words, feedback calibration attenuation, LFL controller, RF asymmetry,
 * decoder mode). */
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"

/* The transmitter prompt of the commands that act on one or both transmitters. */

static const char *ActiveTxName(uint32_t u32ActiveTx)
{
    static const char *const asNames[] = {"neither enabled", "TX1 enabled", "TX2 enabled", "TX1 & TX2 enabled"};
    return u32ActiveTx < sizeof asNames / sizeof asNames[0] ? asNames[u32ActiveTx] : "Unknown Value";
}

int TestGetTxAttn(CalInterfaceHandle hCal)
{
    uint32_t u32TxSelector = 0;
    double dBasebandAttnDb = 0.0;
    uint32_t u32MixerThermIndex = 0;
    uint32_t u32MixerBinaryIndex = 0;
    uint32_t u32PaDriverThermIndex = 0;
    uint32_t u32PaDriverAttnIndex = 0;
    uint32_t u32ExtAttn = 0;

    if (hCal == NULL)
        return -1;
    /* This command asks for its transmitter before it shows its heading. */
    if (!ReadUnsigned(&u32TxSelector, "0 = current active transmitter  1 = TX1 2 = TX2: "))
        return -1;
    puts("\nGetTxAttn:");
    if (ReportError(Q7_GetTxAttn(hCal, u32TxSelector, &dBasebandAttnDb, &u32MixerThermIndex, &u32MixerBinaryIndex,
                                 &u32PaDriverThermIndex, &u32PaDriverAttnIndex, &u32ExtAttn)))
        return -1;
    printf("     baseband attenuator \t\t\t\t= %0.2f dB\n", dBasebandAttnDb);
    printf("     Mixer Thermometer index\t        = %u\n", u32MixerThermIndex);
    printf("     Mixer Binary index\t\t\t        = %u\n", u32MixerBinaryIndex);
    printf("     PA Driver Thermometer index          = %u\n", u32PaDriverThermIndex);
    printf("     PA driver attenuation index        = %u\n", u32PaDriverAttnIndex);
    printf("     External attenuator                 = %s (%u)\n", EnabledText(u32ExtAttn), u32ExtAttn);
    return ReportSuccess("GetTxAttn");
}

int TestSetTxAttn(CalInterfaceHandle hCal)
{
    uint32_t u32TxSelector = 0;
    double dBasebandAttnDb = 0.0;
    uint32_t u32MixerThermIndex = 0;
    uint32_t u32MixerBinaryIndex = 0;
    uint32_t u32PaDriverThermIndex = 0;
    uint32_t u32PaDriverAttnIndex = 0;
    uint32_t u32ExtAttn = 0;

    if (!BeginCommand(hCal, "\nSetTxAttn:"))
        return -1;
    if (!ReadUnsigned(&u32TxSelector, "     0 = current active transmitter  1 = TX1 2 = TX2 3=TX1 & Tx2 both:\t?") ||
        !ReadDouble(&dBasebandAttnDb, "     the baseband attenuator setting, in dB.(0.0 - 11.875)\t\t\t\t?") ||
        !ReadUnsigned(&u32MixerThermIndex, "     the Mixer Thermometer index.(0-15)\t\t\t\t\t\t\t\t\t?") ||
        !ReadUnsigned(&u32MixerBinaryIndex, "     the Mixer Binary index (0-31)\t\t\t\t\t\t\t\t\t\t?") ||
        !ReadUnsigned(&u32PaDriverThermIndex, "     PA Driver Thermometer index.(0-16)\t\t\t\t\t\t\t\t\t?") ||
        !ReadUnsigned(&u32PaDriverAttnIndex, "     PA Driver Attenuator index. (0-5)\t\t\t\t\t\t\t\t\t?") ||
        !ReadUnsigned(&u32ExtAttn, "     External attenuation:(0 = Disabled\t1 = Enabled\t\t\t\t\t\t?"))
        return -1;
    return ReportOutcome(Q7_SetTxAttn(hCal, u32TxSelector, dBasebandAttnDb, u32MixerThermIndex, u32MixerBinaryIndex,
                                      u32PaDriverThermIndex, u32PaDriverAttnIndex, u32ExtAttn),
                         "SetTxAttn");
}

int TestGetTxOutputPower(CalInterfaceHandle hCal)
{
    double dPowerDbm = 0.0;

    if (!BeginCommand(hCal, "\nGetTxOutputPower:") || ReportError(Q7_GetTxOutputPower(hCal, &dPowerDbm)))
        return -1;
    printf("    Tx output power = %lg dBm\n", dPowerDbm);
    return ReportSuccess("GetTxOutputPower");
}

int TestSetTxOutputPower(CalInterfaceHandle hCal)
{
    double dValue = 0.0;

    if (!BeginCommand(hCal, "\nSetTxOutputPower:") ||
        !ReadDouble(&dValue, "     Tx output power (double, -40 to +35 dBm) ? "))
        return -1;
    return ReportOutcome(Q7_SetTxOutputPower(hCal, dValue), "SetTxOutputPower");
}

int TestGetTxDiversitySwitch(CalInterfaceHandle hCal)
{
    uint32_t u32Switch = 0;

    if (!BeginCommand(hCal, "\nGetTxDiversitySwitch:") || ReportError(Q7_GetTxDiversitySwitch(hCal, &u32Switch)))
        return -1;
    printf("    Tx diversity switch = %u (%s)\n", u32Switch, u32Switch == 0 ? "Antenna 1" : "Antenna 2");
    return ReportSuccess("GetTxDiversitySwitch");
}

int TestSetTxDiversitySwitch(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSetTxDiversitySwitch:") ||
        !ReadUnsigned(&u32Value, "     Tx diversity switch (0=Ant 1; 1=Ant 2) ? "))
        return -1;
    return ReportOutcome(Q7_SetTxDiversitySwitch(hCal, u32Value), "SetTxDiversitySwitch");
}

int TestGetActiveTX(CalInterfaceHandle hCal)
{
    uint32_t u32ActiveTx = 0;

    if (!BeginCommand(hCal, "\nGetActiveTx:") || ReportError(Q7_GetActiveTX(hCal, &u32ActiveTx)))
        return -1;
    /* No line end: the SUCCESSFUL line, which starts with one, ends this line. */
    printf(" %s(%u)", ActiveTxName(u32ActiveTx), u32ActiveTx);
    return ReportSuccess("GetActiveTX");
}

int TestSetActiveTX(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSetActiveTx:") ||
        !ReadUnsigned(&u32Value, "please enter: 0=neither enabled 1=TX1 enable 2=TX2 enable 3=TX1 & TX2 enable \n"))
        return -1;
    return ReportOutcome(Q7_SetActiveTX(hCal, u32Value), "SetActiveTX");
}

int TestGetTxBackoff(CalInterfaceHandle hCal)
{
    double dBackoff = 0.0;

    if (!BeginCommand(hCal, "\nGetTxBackoff:") || ReportError(Q7_GetTxBackoff(hCal, &dBackoff)))
        return -1;
    printf("    TxBackoff    = %g\n", dBackoff);
    return ReportSuccess("GetTxBackoff");
}

int TestSetTxBackoff(CalInterfaceHandle hCal)
{
    double dValue = 0.0;

    if (!BeginCommand(hCal, "\nSetTXBackoff:") ||
        !ReadDouble(&dValue, "please enter TXBackoff: "))
        return -1;
    return ReportOutcome(Q7_SetTxBackoff(hCal, dValue), "SetTxBackoff");
}

int TestGetTxGCWord(CalInterfaceHandle hCal)
{
    uint32_t u32TxSelector = 0;
    double dGcWord = 0.0;

    if (!BeginCommand(hCal, "\nGetTxGCWord:"))
        return -1;
    if (!ReadUnsigned(&u32TxSelector, TX_SELECTOR_PROMPT))
        return -1;
    if (ReportError(Q7_GetTxGCWord(hCal, u32TxSelector, &dGcWord)))
        return -1;
    printf("    TxGCWord    = %g\n", dGcWord);
    return ReportSuccess("GetTxGCWord");
}

int TestSetTxGCWord(CalInterfaceHandle hCal)
{
    uint32_t u32TxSelector = 0;
    double dGcWord = 0.0;

    if (!BeginCommand(hCal, "\nSetTxGCWord:"))
        return -1;
    if (!ReadUnsigned(&u32TxSelector, TX_SELECTOR_PROMPT) || !ReadDouble(&dGcWord, "please enter TxGCWord: "))
        return -1;
    return ReportOutcome(Q7_SetTxGCWord(hCal, u32TxSelector, dGcWord), "SetTxGCWord");
}

int TestGetTxPhiWord(CalInterfaceHandle hCal)
{
    uint32_t u32PhiWord = 0;

    if (!BeginCommand(hCal, "\nGetTxPhiWord:") || ReportError(Q7_GetTxPhiWord(hCal, &u32PhiWord)))
        return -1;
    printf(" %u", u32PhiWord);
    return ReportSuccess("GetTxPhiWord");
}

int TestSetTxPhiWord(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSetTxPhiWord:") ||
        !ReadUnsigned(&u32Value, "please enter level of \" PhiWord\" : "))
        return -1;
    return ReportOutcome(Q7_SetTxPhiWord(hCal, u32Value), "SetTxPhiWord");
}

int TestGetFeedbackCalAttn(CalInterfaceHandle hCal)
{
    uint32_t u32Attn = 0;

    if (!BeginCommand(hCal, "\nGetFeedbackCalAttn:") || ReportError(Q7_GetFeedbackCalAttn(hCal, &u32Attn)))
        return -1;
    printf(" %u", u32Attn);
    return ReportSuccess("GetFeedbackCalAttn");
}

int TestSetFeedbackCalAttn(CalInterfaceHandle hCal)
{
    uint32_t u32Value = 0;

    if (!BeginCommand(hCal, "\nSetFeedbackCalAttn:") ||
        !ReadUnsigned(&u32Value, "please enter FeedbackCalAttn: "))
        return -1;
    return ReportOutcome(Q7_SetFeedbackCalAttn(hCal, u32Value), "SetFeedbackCalAttn");
}

int TestSetLCLControllerState(CalInterfaceHandle hCal)
{
    /* The control loop's operation is spelled with "LFL". */
    int32_t i32Value = 0;

    if (!BeginCommand(hCal, "\nSetLCLControllerState:") ||
        !ReadSigned(&i32Value, "please enter: " "0=Freeze control loop" "1=Enable control loop"))
        return -1;
    return ReportOutcome(Q7_SetLFLControllerState(hCal, i32Value), "SetLCLControllerState");
}

int TestGetRFAsymmetry(CalInterfaceHandle hCal)
{
    int32_t i32AsymmetryKHz = 0;

    if (!BeginCommand(hCal, "\nGetRFAsymmetry:") || ReportError(Q7_GetRFAsymmetry(hCal, &i32AsymmetryKHz)))
        return -1;
    printf("RFAsymmetry  = %d KHz\n", i32AsymmetryKHz);
    return ReportSuccess("GetRFAsymmetry");
}

int TestSetRFAsymmetry(CalInterfaceHandle hCal)
{
    int32_t i32Value = 0;

    if (!BeginCommand(hCal, "\nSetRFAsymmetry:") ||
        !ReadSigned(&i32Value, " RFAsymmetry (-31 to 32)?"))
        return -1;
    return ReportOutcome(Q7_SetRFAsymmetry(hCal, i32Value), "SetRFAsymmetry");
}

int TestSetTxDecoderMode(CalInterfaceHandle hCal)
{
    uint32_t u32TxSelector = 0;
    uint32_t u32DecoderMode = 0;

    if (!BeginCommand(hCal, "\nSetTxDecoderMode:"))
        return -1;
    /* Each \x96 is the single byte of a Windows-1252 en dash. */
    if (!ReadUnsigned(&u32TxSelector, TX_SELECTOR_PROMPT) ||
        !ReadUnsigned(&u32DecoderMode, " DecoderMode(0 \x96 Enable Tx Decoder 1 \x96 Override Tx Decoder.? "))
        return -1;
    return ReportOutcome(Q7_SetTxDecoderMode(hCal, u32TxSelector, u32DecoderMode), "SetTxDecoderMode");
}
