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

/* Other Commands */

/* DSD Management Commands (and section selection and copy) */

/* DSD Read/Write Commands */

/* Library Configuration Commands */

/* Test Commands */

/* Stands in for a menu row whose command is not written yet. */
int CommandNotAvailable(CalInterfaceHandle hCal);

#endif /* Q7_COMMANDS_H */
