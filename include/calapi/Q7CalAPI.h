/*
 * The Cal API: the device maker's calibration library, as q7cal calls it.
 *
 * Every device action is one call of a Q7_ operation. The handle comes first,
 * then the values passed in, then pointers to the variables the operation
 * fills. An operation returns an ApiStatus: NULL for success, otherwise a
 * terminated error text owned by the library (printed, never freed).
 * Three operations differ and are marked below.
 *
 * C linkage and C types only, so that the maker's libQ7_LocalCalAPI.so can
 * replace the simulated device without recompiling the program.
 */
#ifndef Q7_CALAPI_H
#define Q7_CALAPI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque; NULL means that no interface is open. */
typedef struct Q7_CalInterface *CalInterfaceHandle;

/* NULL on success, else the library's error text. */
typedef const char *ApiStatus;

/* Interface types of Q7_GetCalInterface. */
#define Q7_INTERFACE_LOCAL 0u

/* Number of library option slots, and the option that holds the NVM mode. */
#define Q7_OPTION_COUNT 8u
#define Q7_OPTION_NVM_MODE 7u

/* One library option slot, described by the library itself. */
typedef struct OptionInfo {
    uint32_t u32OptionID;      /* the slot's own index */
    const char *sName;         /* at most 80 characters */
    uint32_t u32DefaultValue;  /* not used by q7cal */
    uint32_t u32MinValue;      /* not used by q7cal */
    uint32_t u32MaxValue;      /* not used by q7cal */
    uint32_t u32Reserved;      /* nonzero: the slot is reserved and not selectable */
} OptionInfo;

/* Section bitmaps of the three flash DSD sections. */
#define Q7_FLASH_SECTION_PRESENT   0x01u
#define Q7_FLASH_SECTION_VALID     0x02u
#define Q7_FLASH_SECTION_READ_ONLY 0x04u
#define Q7_FLASH_SECTION_ACTIVE    0x08u

typedef struct FlashDSDInfo {
    uint32_t au32SectionBitmap[3];
} FlashDSDInfo;

/* Header values of a Flash 2.x DSD image write (3 words). */
typedef struct Flash2xBytesWithHeader {
    uint32_t u32Reserved;          /* always 0 */
    uint32_t u32DSDImageSize;      /* bytes */
    uint32_t u32DSDImagePriority;
} Flash2xBytesWithHeader;

/* ---- Interface and connection ---------------------------------------- */

/* Returns the handle (not an ApiStatus); NULL on failure. The buffer has room
 * for 128 characters; the third argument is always NULL. */
CalInterfaceHandle Q7_GetCalInterface(uint32_t u32InterfaceType, char *psBuffer, void *pReserved);
/* Closes the interface that Q7_GetCalInterface opened. */
void Q7_CloseCalInterface(void);
ApiStatus Q7_ConnectDevice(CalInterfaceHandle hCal);
ApiStatus Q7_DisconnectDevice(CalInterfaceHandle hCal);

/* ---- Configuration ----------------------------------------------------- */

ApiStatus Q7_GetDeviceMode(CalInterfaceHandle hCal, uint32_t *pu32DutMode, uint32_t *pu32ModulationType,
                           int32_t *pi32CwOffsetKHz, uint32_t *pu32LoopbackTx);
ApiStatus Q7_SetDeviceMode(CalInterfaceHandle hCal, uint32_t u32DutMode, uint32_t u32ModulationType,
                           int32_t i32CwOffsetKHz, uint32_t u32LoopbackTx);
ApiStatus Q7_GetBandConfig(CalInterfaceHandle hCal, uint32_t *pu32CenterFreqKHz, uint32_t *pu32BandwidthKHz);
ApiStatus Q7_SetBandConfig(CalInterfaceHandle hCal, uint32_t u32CenterFreqKHz, uint32_t u32BandwidthKHz);

/* ---- Rx ------------------------------------------------------------------ */

ApiStatus Q7_GetRxAntConfig(CalInterfaceHandle hCal, uint32_t *pu32RxAntConfig);
ApiStatus Q7_SetRxAntConfig(CalInterfaceHandle hCal, uint32_t u32RxAntConfig);
ApiStatus Q7_IsSync(CalInterfaceHandle hCal, double *pdFreqOffsetPpm, uint32_t *pu32SyncFreqKHz,
                    uint32_t *pu32SyncStatus);
ApiStatus Q7_ForceReSync(CalInterfaceHandle hCal);
ApiStatus Q7_SetAGCMode(CalInterfaceHandle hCal, uint32_t u32AgcMode, uint32_t u32AgcBackoffDb);
ApiStatus Q7_GetRxGainState(CalInterfaceHandle hCal, uint32_t u32RxPath, uint32_t *pu32ExtLna,
                            uint32_t *pu32FrontEndGainState, int32_t *pi32PgaGainIndex, double *pdTotalGain);
ApiStatus Q7_SetRxGainState(CalInterfaceHandle hCal, uint32_t u32RxPath, uint32_t u32ExtLna,
                            uint32_t u32FrontEndGainState, int32_t i32PgaGainIndex);
ApiStatus Q7_GetRSSIReport(CalInterfaceHandle hCal, double *pdRx1RssiDbm, double *pdRx2RssiDbm,
                           double *pdCombinedRssiDbm, double *pdRx1AdcPowerDbm, double *pdRx2AdcPowerDbm,
                           uint32_t *pu32Rx1ClipCount, uint32_t *pu32Rx2ClipCount, uint32_t *pu32AdcSamples);
ApiStatus Q7_GetCINR(CalInterfaceHandle hCal, double *pdCombinedCinrDb, double *pdAnt1CinrDb,
                     double *pdAnt2CinrDb);
ApiStatus Q7_GetPerAntThermalNoise(CalInterfaceHandle hCal, double *pdAnt1NoiseDbm, double *pdAnt2NoiseDbm);
ApiStatus Q7_ResetFrameErrorStatistics(CalInterfaceHandle hCal);
/* Frames in error with all 32 bits set: the count is not available. */
ApiStatus Q7_GetFrameErrorStatistics(CalInterfaceHandle hCal, uint32_t *pu32TotalFrames,
                                     uint32_t *pu32FramesInError);

/* ---- Tx (selector: 0 active transmitter, 1 TX1, 2 TX2, 3 both) ------------- */

ApiStatus Q7_GetTxAttn(CalInterfaceHandle hCal, uint32_t u32TxSelector, double *pdBasebandAttnDb,
                       uint32_t *pu32MixerThermIndex, uint32_t *pu32MixerBinaryIndex,
                       uint32_t *pu32PaDriverThermIndex, uint32_t *pu32PaDriverAttnIndex,
                       uint32_t *pu32ExtAttn);
ApiStatus Q7_SetTxAttn(CalInterfaceHandle hCal, uint32_t u32TxSelector, double dBasebandAttnDb,
                       uint32_t u32MixerThermIndex, uint32_t u32MixerBinaryIndex, uint32_t u32PaDriverThermIndex,
                       uint32_t u32PaDriverAttnIndex, uint32_t u32ExtAttn);
ApiStatus Q7_GetTxOutputPower(CalInterfaceHandle hCal, double *pdPowerDbm);
ApiStatus Q7_SetTxOutputPower(CalInterfaceHandle hCal, double dPowerDbm);
ApiStatus Q7_GetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t *pu32Switch);
ApiStatus Q7_SetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t u32Switch);
ApiStatus Q7_GetActiveTX(CalInterfaceHandle hCal, uint32_t *pu32ActiveTx);
ApiStatus Q7_SetActiveTX(CalInterfaceHandle hCal, uint32_t u32ActiveTx);
ApiStatus Q7_GetTxBackoff(CalInterfaceHandle hCal, double *pdBackoff);
ApiStatus Q7_SetTxBackoff(CalInterfaceHandle hCal, double dBackoff);
ApiStatus Q7_GetTxGCWord(CalInterfaceHandle hCal, uint32_t u32TxSelector, double *pdGcWord);
ApiStatus Q7_SetTxGCWord(CalInterfaceHandle hCal, uint32_t u32TxSelector, double dGcWord);
ApiStatus Q7_GetTxPhiWord(CalInterfaceHandle hCal, uint32_t *pu32PhiWord);
ApiStatus Q7_SetTxPhiWord(CalInterfaceHandle hCal, uint32_t u32PhiWord);
ApiStatus Q7_GetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t *pu32Attn);
ApiStatus Q7_SetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t u32Attn);
/* 0 freezes the control loop, 1 enables it. */
ApiStatus Q7_SetLFLControllerState(CalInterfaceHandle hCal, int32_t i32State);
ApiStatus Q7_GetRFAsymmetry(CalInterfaceHandle hCal, int32_t *pi32AsymmetryKHz);
ApiStatus Q7_SetRFAsymmetry(CalInterfaceHandle hCal, int32_t i32AsymmetryKHz);
ApiStatus Q7_SetTxDecoderMode(CalInterfaceHandle hCal, uint32_t u32TxSelector, uint32_t u32DecoderMode);

/* ---- Loopback calibration ------------------------------------------------ */

#define Q7_LC_TRIM_ENTRIES 12u
#define Q7_TX_GAIN_ENTRIES 37u
#define Q7_TX_EXT_ATTN_STEPS 20u

ApiStatus Q7_SetTRSwitch(CalInterfaceHandle hCal, uint32_t u32Ant1State, uint32_t u32Ant2State);
ApiStatus Q7_CalibrateLCTrim(CalInterfaceHandle hCal, int32_t *pi32LCTrim /* 12 */, uint32_t *pu32Count);
ApiStatus Q7_CalibrateTxGains(CalInterfaceHandle hCal, uint32_t u32TxSelector, uint32_t u32CenterFreqKHz,
                              double *pdTxGains /* 37 */);
ApiStatus Q7_CalibrateTxPoutFreqCorr(CalInterfaceHandle hCal, uint32_t u32ScanListIndex);
/* Each out-pointer addresses a pair: entry 0 for Rx1, entry 1 for Rx2. */
ApiStatus Q7_CalibrateFESteps(CalInterfaceHandle hCal, uint32_t u32ScanListIndex, double dRx1AmplitudeDbm,
                              double dRx2AmplitudeDbm, double *pdPgaGainCorrection, double *pdLnaMidGainStep,
                              double *pdLnaHighGainStep, double *pdLnaExtGainStep);
ApiStatus Q7_CalibrateTxExtAttnStep(CalInterfaceHandle hCal, uint32_t u32TxSelector,
                                    double *pdSteps /* 20 */);

/* ---- Other commands -------------------------------------------------------- */

#define Q7_DRIVER_VERSION_SIZE 32u

ApiStatus Q7_ReadGPIOState(CalInterfaceHandle hCal, uint32_t *pu32PinState, uint32_t *pu32PinDirection,
                           uint32_t *pu32WritePermission);
ApiStatus Q7_SetGPIOConfiguration(CalInterfaceHandle hCal, uint32_t u32WritePermission);
ApiStatus Q7_SetGPIOPinState(CalInterfaceHandle hCal, uint32_t u32Pin, uint32_t u32State);
ApiStatus Q7_ReadRFICRegister(CalInterfaceHandle hCal, uint32_t u32Bank, uint32_t u32Register,
                              uint32_t u32Timing, uint32_t *pu32Data);
ApiStatus Q7_WriteRFICRegister(CalInterfaceHandle hCal, uint32_t u32Bank, uint32_t u32Register,
                               uint32_t u32Data, uint32_t u32Timing);
ApiStatus Q7_GetTemperature(CalInterfaceHandle hCal, double *pdDegreesC);
ApiStatus Q7_GetGPADCValue(CalInterfaceHandle hCal, uint32_t u32Mux, uint32_t *pu32Value);
ApiStatus Q7_SetGPDACValue(CalInterfaceHandle hCal, uint32_t u32Mux, double dVolts);
ApiStatus Q7_ResetRxSpectrum(CalInterfaceHandle hCal, uint32_t u32AlphaShift, uint32_t u32SymbolIndex);
/* Fills at most u32Capacity values and reports how many. */
ApiStatus Q7_GetRxSpectrum(CalInterfaceHandle hCal, uint32_t u32Capacity, double *pdSpectrum,
                           uint32_t *pu32Length);
ApiStatus Q7_GetVersionInfo(CalInterfaceHandle hCal, uint32_t *pu32PhyFirmware, uint32_t *pu32MacFirmware /* 3 */,
                            char *psDriverVersion /* 32 */, uint32_t *pu32CalApiVersion /* 3 */,
                            uint32_t *pu32LocalCalApiVersion /* 3 */, uint32_t *pu32BasebandChip,
                            uint32_t *pu32RfChip);

/* ---- Library options --------------------------------------------------------- */

/* No handle; returns the slot's record (never NULL for slots 0 to 7), not an ApiStatus. */
const OptionInfo *Q7_GetOptionInfo(uint32_t u32Index);
ApiStatus Q7_GetOptionByID(CalInterfaceHandle hCal, uint32_t u32OptionID, int32_t *pi32Value);
ApiStatus Q7_SetOptionByID(CalInterfaceHandle hCal, uint32_t u32OptionID, uint32_t u32Value);

/* ---- DSD management ------------------------------------------------------------ */

#define Q7_DSD_MAX_BLOCKS 12u

ApiStatus Q7_LoadDSD(CalInterfaceHandle hCal, uint32_t u32LoadMode);
ApiStatus Q7_IsDSDValid(CalInterfaceHandle hCal, uint32_t *pu32Valid);
ApiStatus Q7_AreDSDChecksumsValid(CalInterfaceHandle hCal, uint8_t *pu8BlockValid /* 12 */,
                                  uint32_t *pu32BlockCount);
ApiStatus Q7_GetDSDChecksums(CalInterfaceHandle hCal, uint16_t *pu16Checksums /* 12 */, uint32_t *pu32BlockCount);
ApiStatus Q7_IsCalibrationValid(CalInterfaceHandle hCal, uint32_t *pu32Valid);
ApiStatus Q7_GetCalibrationInfo(CalInterfaceHandle hCal, uint8_t *pu8CalFlag, uint8_t *pu8VendorID,
                                uint8_t *pu8Date /* 3 */, uint8_t *pu8Time /* 3 */, uint8_t *pu8SwVersion /* 3 */);
ApiStatus Q7_GetMACAddress(CalInterfaceHandle hCal, uint8_t *pu8Mac /* 6 */);
ApiStatus Q7_GetNVMSize(CalInterfaceHandle hCal, uint32_t *pu32DsdSize);
ApiStatus Q7_GetDSDInfo(CalInterfaceHandle hCal, uint32_t *pu32NvmType, uint32_t *pu32DsdSize,
                        uint32_t *pu32FlashMapType);
ApiStatus Q7_GetFlashDSDInfo(CalInterfaceHandle hCal, FlashDSDInfo *pInfo);
ApiStatus Q7_SelectActiveDSDSection(CalInterfaceHandle hCal, uint32_t u32Section);
ApiStatus Q7_SelectCurrentDSDSection(CalInterfaceHandle hCal, uint32_t u32Section);
ApiStatus Q7_CopyDSDSection(CalInterfaceHandle hCal, uint32_t u32SourceSection, uint32_t u32TargetSection,
                            uint32_t u32ByteCount, uint32_t u32Offset);
ApiStatus Q7_InitializeFlash(CalInterfaceHandle hCal, uint32_t u32DesiredSectorSize, uint32_t *pu32ActualSectorSize);

/* ---- DSD reads and writes ------------------------------------------------------- */

ApiStatus Q7_ReadDSDBytes(CalInterfaceHandle hCal, uint8_t *pu8Dest, uint32_t u32ByteCount, uint32_t u32Address);
ApiStatus Q7_GetDSDRegionSizeByID(CalInterfaceHandle hCal, int32_t i32RegionID, uint32_t *pu32Size);
ApiStatus Q7_ReadDSDRegionByID(CalInterfaceHandle hCal, int32_t i32RegionID, uint32_t u32BufferSize,
                               uint8_t *pu8Dest, uint32_t *pu32Returned);
/* Returns the new key itself (not an ApiStatus); 0 on failure. */
uint32_t Q7_RequestDSDWriteKey(CalInterfaceHandle hCal);
ApiStatus Q7_WriteDSDBytes(CalInterfaceHandle hCal, uint32_t u32Key, const uint8_t *pu8Source,
                           uint32_t u32ByteCount, uint32_t u32Address, uint32_t *pu32Written);
ApiStatus Q7_WriteFlash2xBytesWithHeader(CalInterfaceHandle hCal, uint32_t u32Key, const uint8_t *pu8Data,
                                         uint32_t u32Size, uint32_t u32FlashOffset,
                                         const Flash2xBytesWithHeader *pHeader, uint32_t u32HeaderWords,
                                         uint32_t u32WriteMode, uint32_t *pu32Written);
ApiStatus Q7_WriteDSDRegionByID(CalInterfaceHandle hCal, uint32_t u32Key, int32_t i32RegionID,
                                uint32_t u32ByteCount, const uint8_t *pu8Source, uint32_t *pu32Written);

/* ---- Diagnostics ------------------------------------------------------------------- */

ApiStatus Q7_EchoTest(CalInterfaceHandle hCal, uint32_t u32MessageLength);

#ifdef __cplusplus
}
#endif

#endif /* Q7_CALAPI_H */
