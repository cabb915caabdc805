// Cal API entry points of the simulated device. Loopback calibrations: TR switch, LC trim, Tx gains, Pout frequency correction, FE steps, Tx external attenuator steps.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
#include "Interface.h"

extern "C" {

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

}  // extern "C"
