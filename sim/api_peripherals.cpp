// Cal API entry points of the simulated device. Peripherals: GPIO, RFIC registers, temperature, GP ADC/DAC, Rx spectrum, version information, echo.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
#include "Interface.h"

extern "C" {

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

ApiStatus Q7_EchoTest(CalInterfaceHandle hCal, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

}  // extern "C"
