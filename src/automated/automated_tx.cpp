/* The Tx group test of the automated run: attenuators, output power and the
 * diversity switch, each written and read back. */
#include <stdio.h>

#include "automated.h"
#include "command_steps.h"
#include "console.h"
#include "host_time.h"
#include "printed_texts.h"

/* The six attenuator settings of one transmitter. */
typedef struct TxAttnSettings {
    double dBasebandAttnDb;
    uint32_t u32MixerThermIndex;
    uint32_t u32MixerBinaryIndex;
    uint32_t u32PaDriverThermIndex;
    uint32_t u32PaDriverAttnIndex;
    uint32_t u32ExtAttn;
} TxAttnSettings;

static void PrintTxAttnSettings(const TxAttnSettings *pstAttn)
{
    printf("\t baseband attenuator\t\t\t\t= %0.2f dB\n", pstAttn->dBasebandAttnDb);
    /* The thermometer line runs on into the binary line. */
    printf("\t Mixer Thermometer index\t\t\t= %u", pstAttn->u32MixerThermIndex);
    printf("\t Mixer Binary index \t\t\t\t= %u\n", pstAttn->u32MixerBinaryIndex);
    printf("\t PA Driver Thermometer index\t\t  = %u\n", pstAttn->u32PaDriverThermIndex);
    printf("\t PA driver attenuation index\t\t= %u\n", pstAttn->u32PaDriverAttnIndex);
    printf("\t External attenuator\t\t\t\t= %s (%u)\n", EnabledText(pstAttn->u32ExtAttn), pstAttn->u32ExtAttn);
}

/* The read block names the first read's selector, also for a read-back of
 * TX1 or TX2. */
static void PrintReadBlock(uint32_t u32FirstReadSelector, const TxAttnSettings *pstRead)
{
    printf("Read: transmitter mode\t\t\t\t\t=%u\n", u32FirstReadSelector);
    PrintTxAttnSettings(pstRead);
}

static ApiStatus GetTxAttnSettings(CalInterfaceHandle hCal, uint32_t u32TxSelector, TxAttnSettings *pstAttn)
{
    return Q7_GetTxAttn(hCal, u32TxSelector, &pstAttn->dBasebandAttnDb, &pstAttn->u32MixerThermIndex,
                        &pstAttn->u32MixerBinaryIndex, &pstAttn->u32PaDriverThermIndex,
                        &pstAttn->u32PaDriverAttnIndex, &pstAttn->u32ExtAttn);
}

/* Writes the settings to the selected transmitter and reads them back into
 * the read set. */
static void CheckTxAttn(CalInterfaceHandle hCal, uint32_t u32FirstReadSelector, TxAttnSettings *pstRead,
                        uint32_t u32TxSelector, const TxAttnSettings *pstWrite)
{
    if (SessionEnded())
        return;
    ReportTestError(Q7_SetTxAttn(hCal, u32TxSelector, pstWrite->dBasebandAttnDb, pstWrite->u32MixerThermIndex,
                                 pstWrite->u32MixerBinaryIndex, pstWrite->u32PaDriverThermIndex,
                                 pstWrite->u32PaDriverAttnIndex, pstWrite->u32ExtAttn));
    printf("Wrote: transmitter mode \t\t\t\t=%u\n", u32TxSelector);
    PrintTxAttnSettings(pstWrite);
    Q7_SleepMs(500);
    if (SessionEnded())
        return; /* a read-back without the settling time judges nothing */
    const bool bRead = !ReportTestError(GetTxAttnSettings(hCal, u32TxSelector, pstRead));
    PrintReadBlock(u32FirstReadSelector, pstRead);
    printf("%s\n", Verdict(bRead && pstRead->dBasebandAttnDb == pstWrite->dBasebandAttnDb &&
                           pstRead->u32MixerThermIndex == pstWrite->u32MixerThermIndex &&
                           pstRead->u32MixerBinaryIndex == pstWrite->u32MixerBinaryIndex &&
                           pstRead->u32PaDriverThermIndex == pstWrite->u32PaDriverThermIndex &&
                           pstRead->u32PaDriverAttnIndex == pstWrite->u32PaDriverAttnIndex &&
                           pstRead->u32ExtAttn == pstWrite->u32ExtAttn));
}

static void CheckTxOutputPower(CalInterfaceHandle hCal, const char *sAnnouncement, double dPowerDbm)
{
    double dReadDbm = 0.0; /* zero when the read fails */

    if (SessionEnded())
        return;
    printf("%s", sAnnouncement);
    ReportTestError(Q7_SetTxOutputPower(hCal, dPowerDbm));
    const bool bRead = !ReportTestError(Q7_GetTxOutputPower(hCal, &dReadDbm));
    printf("Read %3g dBm  %s\n", dReadDbm, Verdict(bRead && dReadDbm == dPowerDbm));
}

static void CheckTxDiversitySwitch(CalInterfaceHandle hCal, const char *sAnnouncement, uint32_t u32Position)
{
    uint32_t u32ReadPosition = 0; /* zero when the read fails */

    if (SessionEnded())
        return;
    printf("%s", sAnnouncement);
    ReportTestError(Q7_SetTxDiversitySwitch(hCal, u32Position));
    const bool bRead = !ReportTestError(Q7_GetTxDiversitySwitch(hCal, &u32ReadPosition));
    printf("Read %d  %s\n", (int32_t)u32ReadPosition, Verdict(bRead && u32ReadPosition == u32Position));
}

int AutomatedTxGroupTest(CalInterfaceHandle hCal)
{
    static const TxAttnSettings stTx1Attn = {-2.0, 9, 2, 1, 1, 0};
    static const TxAttnSettings stTx2Attn = {2.0, 0, 20, 10, 4, 1};
    const uint32_t u32FirstReadSelector = 0; /* the current active transmitter */
    TxAttnSettings stRead = {0.0, 0, 0, 0, 0, 0}; /* zeros when the first read fails */

    printf("\n");
    PrintTestHeading(TEXT_TX_GROUP);
    PrintTestHeading(TEXT_TX_ATTN_SECTION);
    ReportTestError(GetTxAttnSettings(hCal, u32FirstReadSelector, &stRead));
    PrintReadBlock(u32FirstReadSelector, &stRead);
    CheckTxAttn(hCal, u32FirstReadSelector, &stRead, 1, &stTx1Attn);
    CheckTxAttn(hCal, u32FirstReadSelector, &stRead, 2, &stTx2Attn);
    if (SessionEnded())
        return 0;

    PrintTestHeading(TEXT_TX_POWER_SECTION);
    CheckTxOutputPower(hCal, TEXT_POWER_SETTING "+20 dBm ...", 20.0);
    CheckTxOutputPower(hCal, TEXT_POWER_SETTING "-20 dBm ...", -20.0);
    CheckTxOutputPower(hCal, TEXT_POWER_SETTING_MISSPELT "+10 dBm ...", 10.0);
    if (SessionEnded())
        return 0;

    PrintTestHeading(TEXT_TX_SWITCH_SECTION);
    CheckTxDiversitySwitch(hCal, "Setting switch to 0 (antenna 1) ...", 0);
    CheckTxDiversitySwitch(hCal, "Setting switch to 1 (antenna 2) ...", 1);
    CheckTxDiversitySwitch(hCal, "Setting switch to 0 (antenna 1) ...", 0);
    return 0;
}
