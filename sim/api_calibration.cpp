// Cal API entry points of the simulated device. Loopback calibrations: TR
// switch, LC trim, Tx gains, Pout frequency correction, FE steps, Tx external
// attenuator steps.
#include <algorithm>

#include "Interface.h"

using q7sim::Calibration;
using q7sim::Device;
using q7sim::Dispatch;
using q7sim::Requires;
using q7sim::Status;

extern "C" {

ApiStatus Q7_SetTRSwitch(CalInterfaceHandle hCal, uint32_t u32Ant1State, uint32_t u32Ant2State)
{
    return Dispatch(hCal, __func__, {u32Ant1State, u32Ant2State}, Requires::Connection,
                    [&](Device &device) { return device.cal.SetTRSwitch(u32Ant1State, u32Ant2State); });
}

ApiStatus Q7_CalibrateLCTrim(CalInterfaceHandle hCal, int32_t *pi32LCTrim, uint32_t *pu32Count)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        std::array<int32_t, Calibration::kScanListSize> trim{};
        Status status = device.cal.CalibrateLCTrim(device.modes.mode(), trim, *pu32Count);
        if (status.ok())
            std::copy(trim.begin(), trim.end(), pi32LCTrim);
        return status;
    });
}

ApiStatus Q7_CalibrateTxGains(CalInterfaceHandle hCal, uint32_t u32TxSelector, uint32_t u32CenterFreqKHz,
                              double *pdTxGains)
{
    return Dispatch(hCal, __func__, {u32TxSelector, u32CenterFreqKHz}, Requires::Connection, [&](Device &device) {
        Calibration::TxGainTable gains{};
        Status status = device.cal.CalibrateTxGains(device.modes.mode(), u32TxSelector, device.tx.activeTx(),
                                                    u32CenterFreqKHz, gains);
        if (status.ok())
            std::copy(gains.begin(), gains.end(), pdTxGains);
        return status;
    });
}

ApiStatus Q7_CalibrateTxPoutFreqCorr(CalInterfaceHandle hCal, uint32_t u32ScanListIndex)
{
    return Dispatch(hCal, __func__, {u32ScanListIndex}, Requires::Connection, [&](Device &device) {
        return device.cal.CalibrateTxPoutFreqCorr(device.modes.mode(), device.tx.activeTx(), u32ScanListIndex);
    });
}

ApiStatus Q7_CalibrateFESteps(CalInterfaceHandle hCal, uint32_t u32ScanListIndex, double dRx1AmplitudeDbm,
                              double dRx2AmplitudeDbm, double *pdPgaGainCorrection, double *pdLnaMidGainStep,
                              double *pdLnaHighGainStep, double *pdLnaExtGainStep)
{
    return Dispatch(hCal, __func__, {u32ScanListIndex, dRx1AmplitudeDbm, dRx2AmplitudeDbm}, Requires::Connection,
                    [&](Device &device) {
        Calibration::FESteps steps;
        Status status = device.cal.CalibrateFESteps(device.modes.mode(), u32ScanListIndex, dRx1AmplitudeDbm,
                                                    dRx2AmplitudeDbm, steps);
        if (status.ok()) {
            std::copy(steps.pgaGainCorrection.begin(), steps.pgaGainCorrection.end(), pdPgaGainCorrection);
            std::copy(steps.lnaMidGainStep.begin(), steps.lnaMidGainStep.end(), pdLnaMidGainStep);
            std::copy(steps.lnaHighGainStep.begin(), steps.lnaHighGainStep.end(), pdLnaHighGainStep);
            std::copy(steps.lnaExtGainStep.begin(), steps.lnaExtGainStep.end(), pdLnaExtGainStep);
        }
        return status;
    });
}

ApiStatus Q7_CalibrateTxExtAttnStep(CalInterfaceHandle hCal, uint32_t u32TxSelector, double *pdSteps)
{
    return Dispatch(hCal, __func__, {u32TxSelector}, Requires::Connection, [&](Device &device) {
        Calibration::ExtAttnTable steps{};
        Status status =
            device.cal.CalibrateTxExtAttnStep(device.modes.mode(), u32TxSelector, device.tx.activeTx(), steps);
        if (status.ok())
            std::copy(steps.begin(), steps.end(), pdSteps);
        return status;
    });
}

}  // extern "C"
