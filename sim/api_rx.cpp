// Cal API entry points of the simulated device. Rx: antenna configuration,
// sync, AGC, gain states, RSSI, CINR, noise, frame statistics.
#include "Interface.h"

using q7sim::Device;
using q7sim::Receiver;
using q7sim::RxGainState;
using q7sim::Status;

namespace {

// Dispatches a receiver operation after bringing the receiver up to the
// device's time and band configuration.
template <class Op>
ApiStatus RxDispatch(CalInterfaceHandle hCal, const char *name, q7sim::CallArguments arguments, Op &&op)
{
    return q7sim::Dispatch(hCal, name, arguments, q7sim::Requires::Connection, [&](Device &device) {
        device.rx.Update(device.modes.band(), device.nowUs());
        return op(device.rx);
    });
}

}  // namespace

extern "C" {

ApiStatus Q7_GetRxAntConfig(CalInterfaceHandle hCal, uint32_t *pu32RxAntConfig)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        *pu32RxAntConfig = rx.antConfig();
        return Status::Ok();
    });
}

ApiStatus Q7_SetRxAntConfig(CalInterfaceHandle hCal, uint32_t u32RxAntConfig)
{
    return RxDispatch(hCal, __func__, {u32RxAntConfig}, [&](Receiver &rx) { return rx.SetAntConfig(u32RxAntConfig); });
}

ApiStatus Q7_IsSync(CalInterfaceHandle hCal, double *pdFreqOffsetPpm, uint32_t *pu32SyncFreqKHz,
                    uint32_t *pu32SyncStatus)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        q7sim::SyncReport sync = rx.Sync();
        *pdFreqOffsetPpm = sync.freqOffsetPpm;
        *pu32SyncFreqKHz = sync.syncFreqKHz;
        *pu32SyncStatus = sync.inSync ? 1 : 0;
        return Status::Ok();
    });
}

ApiStatus Q7_ForceReSync(CalInterfaceHandle hCal)
{
    return RxDispatch(hCal, __func__, {}, [](Receiver &rx) {
        rx.ForceReSync();
        return Status::Ok();
    });
}

ApiStatus Q7_SetAGCMode(CalInterfaceHandle hCal, uint32_t u32AgcMode, uint32_t u32AgcBackoffDb)
{
    return RxDispatch(hCal, __func__, {u32AgcMode, u32AgcBackoffDb},
                      [&](Receiver &rx) { return rx.SetAgcMode(u32AgcMode, u32AgcBackoffDb); });
}

ApiStatus Q7_GetRxGainState(CalInterfaceHandle hCal, uint32_t u32RxPath, uint32_t *pu32ExtLna,
                            uint32_t *pu32FrontEndGainState, int32_t *pi32PgaGainIndex, double *pdTotalGain)
{
    return RxDispatch(hCal, __func__, {u32RxPath}, [&](Receiver &rx) {
        RxGainState state;
        double totalGainDb = 0.0;
        Status status = rx.GetGainState(u32RxPath, state, totalGainDb);
        if (status.ok()) {
            *pu32ExtLna = q7sim::Reported("Q7_GetRxGainState", 0, state.extLna);
            *pu32FrontEndGainState = q7sim::Reported("Q7_GetRxGainState", 1, state.feGainState);
            *pi32PgaGainIndex = q7sim::Reported("Q7_GetRxGainState", 2, state.pgaIndex);
            *pdTotalGain = q7sim::Reported("Q7_GetRxGainState", 3, totalGainDb);
        }
        return status;
    });
}

ApiStatus Q7_SetRxGainState(CalInterfaceHandle hCal, uint32_t u32RxPath, uint32_t u32ExtLna,
                            uint32_t u32FrontEndGainState, int32_t i32PgaGainIndex)
{
    return RxDispatch(hCal, __func__, {u32RxPath, u32ExtLna, u32FrontEndGainState, i32PgaGainIndex}, [&](Receiver &rx) {
        return rx.SetGainState(u32RxPath, RxGainState{u32ExtLna, u32FrontEndGainState, i32PgaGainIndex});
    });
}

ApiStatus Q7_GetRSSIReport(CalInterfaceHandle hCal, double *pdRx1RssiDbm, double *pdRx2RssiDbm,
                           double *pdCombinedRssiDbm, double *pdRx1AdcPowerDbm, double *pdRx2AdcPowerDbm,
                           uint32_t *pu32Rx1ClipCount, uint32_t *pu32Rx2ClipCount, uint32_t *pu32AdcSamples)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        q7sim::RssiReport report = rx.Rssi();
        *pdRx1RssiDbm = report.rssiDbm[0];
        *pdRx2RssiDbm = report.rssiDbm[1];
        *pdCombinedRssiDbm = report.combinedRssiDbm;
        *pdRx1AdcPowerDbm = report.adcPowerDbm[0];
        *pdRx2AdcPowerDbm = report.adcPowerDbm[1];
        *pu32Rx1ClipCount = report.clipCount[0];
        *pu32Rx2ClipCount = report.clipCount[1];
        *pu32AdcSamples = report.adcSamples;
        return Status::Ok();
    });
}

ApiStatus Q7_GetCINR(CalInterfaceHandle hCal, double *pdCombinedCinrDb, double *pdAnt1CinrDb, double *pdAnt2CinrDb)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        q7sim::CinrReport report = rx.Cinr();
        *pdCombinedCinrDb = report.combinedDb;
        *pdAnt1CinrDb = report.antennaDb[0];
        *pdAnt2CinrDb = report.antennaDb[1];
        return Status::Ok();
    });
}

ApiStatus Q7_GetPerAntThermalNoise(CalInterfaceHandle hCal, double *pdAnt1NoiseDbm, double *pdAnt2NoiseDbm)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        std::array<double, 2> noise = rx.ThermalNoiseDbm();
        *pdAnt1NoiseDbm = noise[0];
        *pdAnt2NoiseDbm = noise[1];
        return Status::Ok();
    });
}

ApiStatus Q7_ResetFrameErrorStatistics(CalInterfaceHandle hCal)
{
    return RxDispatch(hCal, __func__, {}, [](Receiver &rx) {
        rx.ResetFrameStatistics();
        return Status::Ok();
    });
}

ApiStatus Q7_GetFrameErrorStatistics(CalInterfaceHandle hCal, uint32_t *pu32TotalFrames,
                                     uint32_t *pu32FramesInError)
{
    return RxDispatch(hCal, __func__, {}, [&](Receiver &rx) {
        q7sim::FrameStatistics statistics = rx.frameStatistics();
        *pu32TotalFrames = statistics.totalFrames;
        *pu32FramesInError = statistics.framesInError;
        return Status::Ok();
    });
}

}  // extern "C"
