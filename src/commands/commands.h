/* The handlers of the menu entries, group by group in menu order. Each takes
 * the interface handle and returns 0 for success, -1 for failure. */
#ifndef Q7_COMMANDS_H
#define Q7_COMMANDS_H

#include "Q7CalAPI.h"

/* Configuration Commands */
int TestConnectDevice(CalInterfaceHandle hCal);
int TestDisconnectDevice(CalInterfaceHandle hCal);
int TestGetDeviceMode(CalInterfaceHandle hCal);
int TestSetDeviceMode(CalInterfaceHandle hCal);
int TestGetBandConfig(CalInterfaceHandle hCal);
int TestSetBandConfig(CalInterfaceHandle hCal);

/* Rx Commands */
int TestGetRxAntConfig(CalInterfaceHandle hCal);
int TestSetRxAntConfig(CalInterfaceHandle hCal);
int TestIsSync(CalInterfaceHandle hCal);
int TestForceReSync(CalInterfaceHandle hCal);
int TestSetAGCMode(CalInterfaceHandle hCal);
int TestGetRxGainState(CalInterfaceHandle hCal);
int TestSetRxGainState(CalInterfaceHandle hCal);
int TestGetRSSIReport(CalInterfaceHandle hCal);
int TestGetCINR(CalInterfaceHandle hCal);
int TestGetPerAntThermalNoise(CalInterfaceHandle hCal);
int TestResetFrameErrorStatistics(CalInterfaceHandle hCal);
int TestGetFrameErrorStatistics(CalInterfaceHandle hCal);

/* Tx Commands */
/* The TxSelector prompt of the Tx commands and calibrations that take all
 * four selectors. */
#define TX_SELECTOR_PROMPT "0 = current active transmitter  1 = TX1 2 = TX2 3 =TX1 & TX2: "
int TestGetTxAttn(CalInterfaceHandle hCal);
int TestSetTxAttn(CalInterfaceHandle hCal);
int TestGetTxOutputPower(CalInterfaceHandle hCal);
int TestSetTxOutputPower(CalInterfaceHandle hCal);
int TestGetTxDiversitySwitch(CalInterfaceHandle hCal);
int TestSetTxDiversitySwitch(CalInterfaceHandle hCal);
int TestGetActiveTX(CalInterfaceHandle hCal);
int TestSetActiveTX(CalInterfaceHandle hCal);
int TestGetTxBackoff(CalInterfaceHandle hCal);
int TestSetTxBackoff(CalInterfaceHandle hCal);
int TestGetTxGCWord(CalInterfaceHandle hCal);
int TestSetTxGCWord(CalInterfaceHandle hCal);
int TestGetTxPhiWord(CalInterfaceHandle hCal);
int TestSetTxPhiWord(CalInterfaceHandle hCal);
int TestGetFeedbackCalAttn(CalInterfaceHandle hCal);
int TestSetFeedbackCalAttn(CalInterfaceHandle hCal);
int TestSetLCLControllerState(CalInterfaceHandle hCal);
int TestGetRFAsymmetry(CalInterfaceHandle hCal);
int TestSetRFAsymmetry(CalInterfaceHandle hCal);
int TestSetTxDecoderMode(CalInterfaceHandle hCal);

/* Loopback Calibration Commands */
int TestSetTRSwitch(CalInterfaceHandle hCal);
int TestCalibrateLCTrim(CalInterfaceHandle hCal);
int TestCalibrateTxGains(CalInterfaceHandle hCal);
int TestCalibrateTxPoutFreqCorr(CalInterfaceHandle hCal);
int TestCalibrateFESteps(CalInterfaceHandle hCal);
int TestCalibrateTxExtAttnStep(CalInterfaceHandle hCal);
/* The result tables of the FE step and external attenuator step calibrations,
 * each led by an empty line; pairs hold Rx1 first, then Rx2. */
void PrintFEStepTable(const double adPgaGainCorrection[2], const double adLnaMidGainStep[2],
                      const double adLnaHighGainStep[2], const double adLnaExtGainStep[2]);
void PrintTxExtAttnSteps(const double adSteps[Q7_TX_EXT_ATTN_STEPS]);

/* Other Commands */
int TestReadGPIOState(CalInterfaceHandle hCal);
int TestSetGPIOConfiguration(CalInterfaceHandle hCal);
int TestSetGPIOPinState(CalInterfaceHandle hCal);
int TestReadRFICRegister(CalInterfaceHandle hCal);
int TestWriteRFICRegister(CalInterfaceHandle hCal);
int TestGetTemperature(CalInterfaceHandle hCal);
int TestGetGPADCValue(CalInterfaceHandle hCal);
int TestSetGPDACValue(CalInterfaceHandle hCal);
int TestResetRxSpectrum(CalInterfaceHandle hCal);
int TestGetRxSpectrum(CalInterfaceHandle hCal);
int TestGetVersionInfo(CalInterfaceHandle hCal);

/* DSD Management Commands (and section selection and copy) */
/* Block names by block number; most are padded to eight characters. */
extern const char *const gsDSDBlockName[Q7_DSD_MAX_BLOCKS];
int TestLoadDSD(CalInterfaceHandle hCal);
int TestIsDSDValid(CalInterfaceHandle hCal);
int TestAreDSDChecksumsValid(CalInterfaceHandle hCal);
int TestGetDSDChecksums(CalInterfaceHandle hCal);
int TestIsCalibrationValid(CalInterfaceHandle hCal);
int TestGetCalibrationInfo(CalInterfaceHandle hCal);
int TestGetMACAddress(CalInterfaceHandle hCal);
int TestGetNVMSize(CalInterfaceHandle hCal);
int TestGetDSDInfo(CalInterfaceHandle hCal);
int TestGetFlashDSDInfo(CalInterfaceHandle hCal);
int TestSelectActiveDSDSection(CalInterfaceHandle hCal);
int TestInitializeFlash(CalInterfaceHandle hCal);
int TestSelectCurrentDSDSection(CalInterfaceHandle hCal);
int TestCopyDSDSection(CalInterfaceHandle hCal);

/* DSD Read/Write Commands */
int TestReadDSDBlock(CalInterfaceHandle hCal);
int TestReadDSDBytes(CalInterfaceHandle hCal);
int TestGetDSDRegionSizeByID(CalInterfaceHandle hCal);
int TestReadDSDRegionByID(CalInterfaceHandle hCal);
int TestRequestDSDWriteKey(CalInterfaceHandle hCal);
int TestWriteDSDBlock(CalInterfaceHandle hCal);
/* The byte write (flash2x 0) or the Flash 2.x image write with its header
 * block (any other value), with verification and restore: 0 when the write
 * succeeded without verify errors, else -1. Prints all but the SUCCESSFUL line. */
int Q7_WriteDSDBytesEx(CalInterfaceHandle hCal, uint32_t u32Flash2x);
int TestWriteDSDBytes(CalInterfaceHandle hCal);
int TestWriteFlash2xBytesWithHeader(CalInterfaceHandle hCal);
int TestWriteDSDRegionByID(CalInterfaceHandle hCal);

/* Library Configuration Commands */
/* Shows the option slots and reads a choice until it is valid: a usable slot
 * 0 to 7, 8 (all options, only when iAllOptions is nonzero) or -1. */
int GetOptionChoice(int iAllOptions);
int TestGetOptionByID(CalInterfaceHandle hCal);
int TestSetOptionByID(CalInterfaceHandle hCal);

/* Test Commands */
#include "automated.h"
#include "diagnostics.h"

#endif /* Q7_COMMANDS_H */
