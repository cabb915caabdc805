// Cal API entry points of the simulated device. Library options: the eight option slots.
// Not modelled yet: each answers an error text that says so, so that the
// library always links.
#include "Interface.h"

extern "C" {

const OptionInfo *Q7_GetOptionInfo(uint32_t u32Index)
{
    // Every slot reads as reserved until the library options are modelled.
    static const OptionInfo kReserved[Q7_OPTION_COUNT] = {
        {0, "", 0, 0, 0, 1}, {1, "", 0, 0, 0, 1}, {2, "", 0, 0, 0, 1}, {3, "", 0, 0, 0, 1},
        {4, "", 0, 0, 0, 1}, {5, "", 0, 0, 0, 1}, {6, "", 0, 0, 0, 1}, {7, "", 0, 0, 0, 1},
    };
    return u32Index < Q7_OPTION_COUNT ? &kReserved[u32Index] : nullptr;
}

ApiStatus Q7_GetOptionByID(CalInterfaceHandle hCal, uint32_t, int32_t *)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

ApiStatus Q7_SetOptionByID(CalInterfaceHandle hCal, uint32_t, uint32_t)
{
    return q7sim::NotSupportedYet(hCal, __func__);
}

}  // extern "C"
