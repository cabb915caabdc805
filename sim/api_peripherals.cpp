// Cal API entry points of the simulated device. Peripherals: GPIO, RFIC
// registers, temperature, GP ADC/DAC, Rx spectrum, version information, echo.
#include <algorithm>

#include "Interface.h"

using q7sim::Device;
using q7sim::Dispatch;
using q7sim::Requires;
using q7sim::RxSpectrum;
using q7sim::Status;

extern "C" {

ApiStatus Q7_ReadGPIOState(CalInterfaceHandle hCal, uint32_t *pu32PinState, uint32_t *pu32PinDirection,
                           uint32_t *pu32WritePermission)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pu32PinState = q7sim::Faults().WithStuckPins(device.gpio.state());
        *pu32PinDirection = device.gpio.direction();
        *pu32WritePermission = device.gpio.writePermission();
        return Status::Ok();
    });
}

ApiStatus Q7_SetGPIOConfiguration(CalInterfaceHandle hCal, uint32_t u32WritePermission)
{
    return Dispatch(hCal, __func__, {u32WritePermission}, Requires::Connection, [&](Device &device) {
        device.gpio.SetWritePermission(u32WritePermission);
        return Status::Ok();
    });
}

ApiStatus Q7_SetGPIOPinState(CalInterfaceHandle hCal, uint32_t u32Pin, uint32_t u32State)
{
    return Dispatch(hCal, __func__, {u32Pin, u32State}, Requires::Connection,
                    [&](Device &device) { return device.gpio.SetPinState(u32Pin, u32State); });
}

ApiStatus Q7_ReadRFICRegister(CalInterfaceHandle hCal, uint32_t u32Bank, uint32_t u32Register, uint32_t u32Timing,
                              uint32_t *pu32Data)
{
    return Dispatch(hCal, __func__, {u32Bank, u32Register, u32Timing}, Requires::Connection,
                    [&](Device &device) { return device.rfic.Read(u32Bank, u32Register, u32Timing, *pu32Data); });
}

ApiStatus Q7_WriteRFICRegister(CalInterfaceHandle hCal, uint32_t u32Bank, uint32_t u32Register, uint32_t u32Data,
                               uint32_t u32Timing)
{
    return Dispatch(hCal, __func__, {u32Bank, u32Register, u32Data, u32Timing}, Requires::Connection,
                    [&](Device &device) { return device.rfic.Write(u32Bank, u32Register, u32Data, u32Timing); });
}

ApiStatus Q7_GetTemperature(CalInterfaceHandle hCal, double *pdDegreesC)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pdDegreesC = device.thermal.ReadC();
        return Status::Ok();
    });
}

ApiStatus Q7_GetGPADCValue(CalInterfaceHandle hCal, uint32_t u32Mux, uint32_t *pu32Value)
{
    return Dispatch(hCal, __func__, {u32Mux}, Requires::Connection, [&](Device &device) {
        return device.analog.ReadAdc(u32Mux, device.thermal.dieC(), device.Transmitting(), *pu32Value);
    });
}

ApiStatus Q7_SetGPDACValue(CalInterfaceHandle hCal, uint32_t u32Mux, double dVolts)
{
    return Dispatch(hCal, __func__, {u32Mux, dVolts}, Requires::Connection,
                    [&](Device &device) { return device.analog.SetDac(u32Mux, dVolts); });
}

ApiStatus Q7_ResetRxSpectrum(CalInterfaceHandle hCal, uint32_t u32AlphaShift, uint32_t u32SymbolIndex)
{
    return Dispatch(hCal, __func__, {u32AlphaShift, u32SymbolIndex}, Requires::Connection,
                    [&](Device &device) { return device.spectrum.Reset(u32AlphaShift, u32SymbolIndex); });
}

ApiStatus Q7_GetRxSpectrum(CalInterfaceHandle hCal, uint32_t u32Capacity, double *pdSpectrum, uint32_t *pu32Length)
{
    return Dispatch(hCal, __func__, {u32Capacity}, Requires::Connection, [&](Device &device) {
        bool signal = RxSpectrum::SignalInChannel(device.modes.band(), device.modes.mode(), device.Transmitting());
        return device.spectrum.Capture(device.modes.band().bandwidthKHz, signal, u32Capacity, pdSpectrum,
                                       *pu32Length);
    });
}

ApiStatus Q7_GetVersionInfo(CalInterfaceHandle hCal, uint32_t *pu32PhyFirmware, uint32_t *pu32MacFirmware,
                            char *psDriverVersion, uint32_t *pu32CalApiVersion, uint32_t *pu32LocalCalApiVersion,
                            uint32_t *pu32BasebandChip, uint32_t *pu32RfChip)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        const q7sim::VersionInfo::Report &report = device.versions.report();
        *pu32PhyFirmware = report.phyFirmware;
        std::copy(report.macFirmware.begin(), report.macFirmware.end(), pu32MacFirmware);
        device.versions.CopyDriverVersion(psDriverVersion);
        std::copy(report.calApi.begin(), report.calApi.end(), pu32CalApiVersion);
        std::copy(report.localCalApi.begin(), report.localCalApi.end(), pu32LocalCalApiVersion);
        *pu32BasebandChip = report.basebandChip;
        *pu32RfChip = report.rfChip;
        return Status::Ok();
    });
}

ApiStatus Q7_EchoTest(CalInterfaceHandle hCal, uint32_t u32MessageLength)
{
    return Dispatch(hCal, __func__, {u32MessageLength}, Requires::Connection,
                    [&](Device &device) { return device.echo.Exchange(u32MessageLength); });
}

}  // extern "C"
