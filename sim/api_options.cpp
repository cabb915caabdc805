// Cal API entry points of the simulated device. Library options: the eight option slots.
#include "Interface.h"

using q7sim::Device;
using q7sim::Dispatch;
using q7sim::Requires;

extern "C" {

const OptionInfo *Q7_GetOptionInfo(uint32_t u32Index)
{
    // No handle: the records of the open interface, else the library's own.
    Q7_CalInterface *itf = q7sim::CurrentInterface();
    return itf != nullptr ? itf->device.options.Info(u32Index) : q7sim::Options::FactoryInfo(u32Index);
}

ApiStatus Q7_GetOptionByID(CalInterfaceHandle hCal, uint32_t u32OptionID, int32_t *pi32Value)
{
    return Dispatch(hCal, __func__, {u32OptionID}, Requires::Connection, [&](Device &device) {
        q7sim::Status status = device.options.Get(u32OptionID, pi32Value);
        if (status.ok())
            *pi32Value = q7sim::Reported("Q7_GetOptionByID", 0, *pi32Value);
        return status;
    });
}

ApiStatus Q7_SetOptionByID(CalInterfaceHandle hCal, uint32_t u32OptionID, uint32_t u32Value)
{
    return Dispatch(hCal, __func__, {u32OptionID, u32Value}, Requires::Connection,
                    [&](Device &device) { return device.options.Set(u32OptionID, u32Value); });
}

}  // extern "C"
