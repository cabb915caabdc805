// Cal API entry points of the simulated device. Rx: antenna configuration, sync, AGC, gain states, RSSI, CINR, noise, frame statistics.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
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

}  // extern "C"
