// Cal API entry points: the interface, the connection and the configuration.
#include <algorithm>

#include "Interface.h"

using q7sim::BandConfig;
using q7sim::DeviceMode;
using q7sim::Device;
using q7sim::Dispatch;
using q7sim::Requires;
using q7sim::Status;

extern "C" {

CalInterfaceHandle Q7_GetCalInterface(uint32_t u32InterfaceType, char *sBuffer, void *)
{
    // This library serves the local interface only.
    if (u32InterfaceType != Q7_INTERFACE_LOCAL || q7sim::Faults().TakeFailure(__func__, {u32InterfaceType}))
        return nullptr;
    // The caller's 128 characters are the library's to use: all of them are
    // written, so a smaller buffer shows under the sanitizers.
    std::fill_n(sBuffer, 128, '\0');
    return q7sim::OpenInterface();
}

void Q7_CloseCalInterface(void) { q7sim::CloseInterface(); }

ApiStatus Q7_ConnectDevice(CalInterfaceHandle hCal)
{
    return Dispatch(hCal, __func__, {}, Requires::Interface, [hCal](Device &device) {
        unsigned attempt = ++hCal->connectAttempts;
        if (!device.connected() && !q7sim::Faults().ConnectAnswers(attempt))
            return Status::Error("Device did not answer the connect request");
        return device.Connect();
    });
}

ApiStatus Q7_DisconnectDevice(CalInterfaceHandle hCal)
{
    return Dispatch(hCal, __func__, {}, Requires::Interface, [](Device &device) { return device.Disconnect(); });
}

ApiStatus Q7_GetDeviceMode(CalInterfaceHandle hCal, uint32_t *pu32DutMode, uint32_t *pu32ModulationType,
                           int32_t *pi32CwOffsetKHz, uint32_t *pu32LoopbackTx)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        const DeviceMode &mode = device.modes.mode();
        *pu32DutMode = mode.dutMode;
        *pu32ModulationType = mode.modulationType;
        *pi32CwOffsetKHz = mode.cwOffsetKHz;
        *pu32LoopbackTx = mode.loopbackTx;
        return Status::Ok();
    });
}

ApiStatus Q7_SetDeviceMode(CalInterfaceHandle hCal, uint32_t u32DutMode, uint32_t u32ModulationType,
                           int32_t i32CwOffsetKHz, uint32_t u32LoopbackTx)
{
    return Dispatch(hCal, __func__, {u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx},
                    Requires::Connection, [&](Device &device) {
        return device.modes.SetDeviceMode(DeviceMode{u32DutMode, u32ModulationType, i32CwOffsetKHz, u32LoopbackTx});
    });
}

ApiStatus Q7_GetBandConfig(CalInterfaceHandle hCal, uint32_t *pu32CenterFreqKHz, uint32_t *pu32BandwidthKHz)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pu32CenterFreqKHz = q7sim::Reported("Q7_GetBandConfig", 0, device.modes.band().centerFreqKHz);
        *pu32BandwidthKHz = q7sim::Reported("Q7_GetBandConfig", 1, device.modes.band().bandwidthKHz);
        return Status::Ok();
    });
}

ApiStatus Q7_SetBandConfig(CalInterfaceHandle hCal, uint32_t u32CenterFreqKHz, uint32_t u32BandwidthKHz)
{
    return Dispatch(hCal, __func__, {u32CenterFreqKHz, u32BandwidthKHz}, Requires::Connection, [&](Device &device) {
        return device.modes.SetBandConfig(BandConfig{u32CenterFreqKHz, u32BandwidthKHz});
    });
}

}  // extern "C"
