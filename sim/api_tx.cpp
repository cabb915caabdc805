// Cal API entry points of the simulated device. Tx: attenuators, output power, diversity switch, active transmitters and the low-level words.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
#include "Interface.h"

extern "C" {

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

}  // extern "C"
