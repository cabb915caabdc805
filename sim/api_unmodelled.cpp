// Cal API entry points whose part of the device is not modelled yet: each
// answers an error text that says so, so that the library always links.
#include "Interface.h"

extern "C" {

ApiStatus Q7_GetRxAntConfig(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetRxAntConfig(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_IsSync(CalInterfaceHandle hCal, double *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ForceReSync(CalInterfaceHandle hCal)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetAGCMode(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetRxGainState(CalInterfaceHandle hCal, uint32_t, uint32_t *, uint32_t *, int32_t *, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetRxGainState(CalInterfaceHandle hCal, uint32_t, uint32_t, uint32_t, int32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetRSSIReport(CalInterfaceHandle hCal, double *, double *, double *, double *, double *, uint32_t *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetCINR(CalInterfaceHandle hCal, double *, double *, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetPerAntThermalNoise(CalInterfaceHandle hCal, double *, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ResetFrameErrorStatistics(CalInterfaceHandle hCal)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetFrameErrorStatistics(CalInterfaceHandle hCal, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxAttn(CalInterfaceHandle hCal, uint32_t, double *, uint32_t *, uint32_t *, uint32_t *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxAttn(CalInterfaceHandle hCal, uint32_t, double, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxOutputPower(CalInterfaceHandle hCal, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxOutputPower(CalInterfaceHandle hCal, double)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetActiveTX(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetActiveTX(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxBackoff(CalInterfaceHandle hCal, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxBackoff(CalInterfaceHandle hCal, double)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxGCWord(CalInterfaceHandle hCal, uint32_t, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxGCWord(CalInterfaceHandle hCal, uint32_t, double)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTxPhiWord(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxPhiWord(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetLFLControllerState(CalInterfaceHandle hCal, int32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetRFAsymmetry(CalInterfaceHandle hCal, int32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetRFAsymmetry(CalInterfaceHandle hCal, int32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTxDecoderMode(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetTRSwitch(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CalibrateLCTrim(CalInterfaceHandle hCal, int32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CalibrateTxGains(CalInterfaceHandle hCal, uint32_t, uint32_t, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CalibrateTxPoutFreqCorr(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CalibrateFESteps(CalInterfaceHandle hCal, uint32_t, double, double, double *, double *, double *, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CalibrateTxExtAttnStep(CalInterfaceHandle hCal, uint32_t, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ReadGPIOState(CalInterfaceHandle hCal, uint32_t *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetGPIOConfiguration(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetGPIOPinState(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ReadRFICRegister(CalInterfaceHandle hCal, uint32_t, uint32_t, uint32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_WriteRFICRegister(CalInterfaceHandle hCal, uint32_t, uint32_t, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetTemperature(CalInterfaceHandle hCal, double *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetGPADCValue(CalInterfaceHandle hCal, uint32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetGPDACValue(CalInterfaceHandle hCal, uint32_t, double)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ResetRxSpectrum(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetRxSpectrum(CalInterfaceHandle hCal, uint32_t, double *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetVersionInfo(CalInterfaceHandle hCal, uint32_t *, uint32_t *, char *, uint32_t *, uint32_t *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetOptionByID(CalInterfaceHandle hCal, uint32_t, int32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetOptionByID(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_LoadDSD(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_IsDSDValid(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_AreDSDChecksumsValid(CalInterfaceHandle hCal, uint8_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetDSDChecksums(CalInterfaceHandle hCal, uint16_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_IsCalibrationValid(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetCalibrationInfo(CalInterfaceHandle hCal, uint8_t *, uint8_t *, uint8_t *, uint8_t *, uint8_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetMACAddress(CalInterfaceHandle hCal, uint8_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetNVMSize(CalInterfaceHandle hCal, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetDSDInfo(CalInterfaceHandle hCal, uint32_t *, uint32_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetFlashDSDInfo(CalInterfaceHandle hCal, FlashDSDInfo *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SelectActiveDSDSection(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SelectCurrentDSDSection(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_CopyDSDSection(CalInterfaceHandle hCal, uint32_t, uint32_t, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_InitializeFlash(CalInterfaceHandle hCal, uint32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ReadDSDBytes(CalInterfaceHandle hCal, uint8_t *, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_GetDSDRegionSizeByID(CalInterfaceHandle hCal, int32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_ReadDSDRegionByID(CalInterfaceHandle hCal, int32_t, uint32_t, uint8_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

uint32_t Q7_RequestDSDWriteKey(CalInterfaceHandle hCal)
{
    // A refused request answers key 0.
    q7sim::NotSupportedYet(hCal, __func__);
    return 0;
}

ApiStatus Q7_WriteDSDBytes(CalInterfaceHandle hCal, uint32_t, const uint8_t *, uint32_t, uint32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_WriteFlash2xBytesWithHeader(CalInterfaceHandle hCal, uint32_t, const uint8_t *, uint32_t, uint32_t, const Flash2xBytesWithHeader *, uint32_t, uint32_t, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_WriteDSDRegionByID(CalInterfaceHandle hCal, uint32_t, int32_t, uint32_t, const uint8_t *, uint32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_EchoTest(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

const OptionInfo *Q7_GetOptionInfo(uint32_t u32Index)
{
    // Every slot reads as reserved until the library options are modelled.
    static const OptionInfo kReserved[Q7_OPTION_COUNT] = {
        {0, "", 0, 0, 0, 1}, {1, "", 0, 0, 0, 1}, {2, "", 0, 0, 0, 1}, {3, "", 0, 0, 0, 1},
        {4, "", 0, 0, 0, 1}, {5, "", 0, 0, 0, 1}, {6, "", 0, 0, 0, 1}, {7, "", 0, 0, 0, 1},
    };
    return u32Index < Q7_OPTION_COUNT ? &kReserved[u32Index] : nullptr;
}

}  // extern "C"
