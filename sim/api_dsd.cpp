// Cal API entry points of the simulated device. The DSD: loading, checksums, calibration record, MAC address, NVM and flash sections, reads and writes.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
#include "Interface.h"

extern "C" {

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

}  // extern "C"
