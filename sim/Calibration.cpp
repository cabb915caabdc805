#include "Calibration.h"

#include <cmath>
#include <iterator>
#include <random>

namespace q7sim {

namespace {

const char *ModeName(uint32_t dutMode)
{
    static const char *const kNames[] = {"Normal", "Calibration", "Tx CW", "Tx OFDMA", "AGC free-run", "Loopback"};
    return dutMode < std::size(kNames) ? kNames[dutMode] : "an unknown";
}

// A calibration runs only in the device mode that routes its signals.
Status RequireMode(const DeviceMode &mode, uint32_t wanted, const char *what)
{
    if (mode.dutMode == wanted)
        return Status::Ok();
    return Status::Errorf("%s needs %s mode (DUT mode %u); the device is in %s mode (DUT mode %u)", what,
                          ModeName(wanted), wanted, ModeName(mode.dutMode), mode.dutMode);
}

Status CheckScanIndex(uint32_t scanIndex)
{
    if (scanIndex >= Calibration::kScanListSize)
        return Status::Errorf("Scan list index %u is out of range (0-%u)", scanIndex, Calibration::kScanListSize - 1);
    return Status::Ok();
}

// The transmitters a selector stands for: bit 0 TX1, bit 1 TX2.
Status SelectTransmitters(uint32_t selector, uint32_t activeTx, uint32_t &mask)
{
    if (selector > 3)
        return Status::Errorf("Tx selector %u is out of range (0-3)", selector);
    mask = selector == 0 ? activeTx : selector;
    if (mask == 0)
        return Status::Error("No transmitter is active (Tx selector 0)");
    return Status::Ok();
}

// The Tx calibrations loop the transmitters back in Loopback mode.
Status LoopbackTransmitters(const DeviceMode &mode, const char *what, uint32_t selector, uint32_t activeTx,
                            uint32_t &mask)
{
    if (Status status = RequireMode(mode, kDutLoopback, what); !status.ok())
        return status;
    return SelectTransmitters(selector, activeTx, mask);
}

bool Selected(uint32_t mask, uint32_t tx) { return (mask & (1u << tx)) != 0; }

// The first transmitter of a mask: its table is the one returned.
uint32_t FirstTransmitter(uint32_t mask) { return Selected(mask, 0) ? 0 : 1; }

double GHz(uint32_t kHz) { return kHz / 1e6; }

constexpr uint32_t kTxLowKHz = 2300000;
constexpr uint32_t kTxHighKHz = 3800000;
constexpr double kFeAmplitudeLowDbm = -80.0;
constexpr double kFeAmplitudeHighDbm = -20.0;

Status CheckAmplitude(const char *path, double dbm)
{
    if (dbm >= kFeAmplitudeLowDbm && dbm <= kFeAmplitudeHighDbm)
        return Status::Ok();
    return Status::Errorf("%s signal amplitude %.1f dBm is out of range (%.0f to %.0f dBm)", path, dbm,
                          kFeAmplitudeLowDbm, kFeAmplitudeHighDbm);
}

}  // namespace

Calibration::Calibration()
{
    std::mt19937 rng(0x1C7A1Bu);
    auto spread = [&rng](double halfWidth) { return std::uniform_real_distribution<double>(-halfWidth, halfWidth)(rng); };

    spread_.lcTrimOffset = std::uniform_int_distribution<int32_t>(-3, 3)(rng);
    for (uint32_t tx = 0; tx < kTransmitters; tx++) {
        spread_.gainOffsetDb[tx] = spread(0.5);
        for (double &error : spread_.gainStepError[tx])
            error = spread(0.06);
        for (double &error : spread_.extAttnError[tx])
            error = spread(0.08);
        spread_.poutOffsetDb[tx] = spread(0.3);
    }
    for (uint32_t path = 0; path < kRxPaths; path++) {
        spread_.feOffset.pgaGainCorrection[path] = spread(0.3);
        spread_.feOffset.lnaMidGainStep[path] = spread(0.25);
        spread_.feOffset.lnaHighGainStep[path] = spread(0.2);
        spread_.feOffset.lnaExtGainStep[path] = spread(0.3);
    }
}

Status Calibration::SetTRSwitch(uint32_t ant1, uint32_t ant2)
{
    if (ant1 > 1)
        return Status::Errorf("Antenna 1 TR switch state %u is out of range (0-1)", ant1);
    if (ant2 > 1)
        return Status::Errorf("Antenna 2 TR switch state %u is out of range (0-1)", ant2);
    tr_ = TrSwitch{ant1, ant2};
    return Status::Ok();
}

Status Calibration::CalibrateLCTrim(const DeviceMode &mode, std::array<int32_t, kScanListSize> &trim,
                                    uint32_t &count)
{
    if (Status status = RequireMode(mode, kDutLoopback, "LC trim calibration"); !status.ok())
        return status;
    // The VCO tank tunes as 1/sqrt(LC): the capacitor code falls with the
    // square of the frequency, shifted by this unit's tank tolerance.
    for (uint32_t i = 0; i < kScanListSize; i++) {
        double ratio = 2.3 / GHz(kScanListKHz[i]);
        lcTrim_[i] = static_cast<int32_t>(std::lround(100.0 * ratio * ratio)) + spread_.lcTrimOffset;
    }
    trim = lcTrim_;
    count = forcedLcTrimCount_.value_or(kScanListSize);
    return Status::Ok();
}

Status Calibration::CalibrateTxGains(const DeviceMode &mode, uint32_t selector, uint32_t activeTx, uint32_t centerKHz,
                                     TxGainTable &gains)
{
    uint32_t mask = 0;
    if (Status status = LoopbackTransmitters(mode, "Tx gain calibration", selector, activeTx, mask); !status.ok())
        return status;
    if (centerKHz < kTxLowKHz || centerKHz > kTxHighKHz)
        return Status::Errorf("Center frequency %u kHz is outside the transmitter's range (%u-%u kHz)", centerKHz,
                              kTxLowKHz, kTxHighKHz);
    for (uint32_t tx = 0; tx < kTransmitters; tx++) {
        if (!Selected(mask, tx))
            continue;
        // About 1 dB per gain step, from a top gain that falls with frequency.
        TxGainTable &table = txGains_[tx];
        table[0] = 38.0 - 1.5 * (GHz(centerKHz) - 2.3) + spread_.gainOffsetDb[tx];
        for (uint32_t i = 1; i < kTxGainEntries; i++)
            table[i] = table[i - 1] - (1.0 + spread_.gainStepError[tx][i]);
        txGainsCenterKHz_[tx] = centerKHz;
    }
    gains = txGains_[FirstTransmitter(mask)];
    return Status::Ok();
}

Status Calibration::CalibrateTxPoutFreqCorr(const DeviceMode &mode, uint32_t activeTx, uint32_t scanIndex)
{
    uint32_t mask = 0;
    if (Status status = LoopbackTransmitters(mode, "Tx Pout frequency correction", 0, activeTx, mask); !status.ok())
        return status;
    if (Status status = CheckScanIndex(scanIndex); !status.ok())
        return status;
    for (uint32_t tx = 0; tx < kTransmitters; tx++) {
        if (Selected(mask, tx))
            poutCorrectionDb_[tx][scanIndex] = -0.8 * (GHz(kScanListKHz[scanIndex]) - 2.5) + spread_.poutOffsetDb[tx];
    }
    return Status::Ok();
}

Status Calibration::CalibrateFESteps(const DeviceMode &mode, uint32_t scanIndex, double rx1Dbm, double rx2Dbm,
                                     FESteps &steps)
{
    if (Status status = RequireMode(mode, kDutAgcFreeRun, "FE step calibration"); !status.ok())
        return status;
    if (Status status = CheckScanIndex(scanIndex); !status.ok())
        return status;
    if (Status status = CheckAmplitude("Rx1", rx1Dbm); !status.ok())
        return status;
    if (Status status = CheckAmplitude("Rx2", rx2Dbm); !status.ok())
        return status;
    if (tr_.ant1 != 0 || tr_.ant2 != 0)
        return Status::Errorf("Rx%u is switched off: its antenna TR switch is at 1 (Tx on, Rx off)",
                              tr_.ant1 != 0 ? 1u : 2u);

    const double aboveLowGHz = GHz(kScanListKHz[scanIndex]) - 2.3;
    const double amplitudes[kRxPaths] = {rx1Dbm, rx2Dbm};
    const FESteps &offset = spread_.feOffset;
    for (uint32_t path = 0; path < kRxPaths; path++) {
        // A strong signal compresses the high-gain state and shortens its measured step.
        double compressionDb = amplitudes[path] > -30.0 ? 0.2 * (amplitudes[path] + 30.0) : 0.0;
        feSteps_.pgaGainCorrection[path] = offset.pgaGainCorrection[path];
        feSteps_.lnaMidGainStep[path] = 14.0 - 0.4 * aboveLowGHz + offset.lnaMidGainStep[path];
        feSteps_.lnaHighGainStep[path] = 12.0 - 0.3 * aboveLowGHz + offset.lnaHighGainStep[path] - compressionDb;
        feSteps_.lnaExtGainStep[path] = 15.0 - 0.8 * aboveLowGHz + offset.lnaExtGainStep[path];
    }
    steps = feSteps_;
    return Status::Ok();
}

Status Calibration::CalibrateTxExtAttnStep(const DeviceMode &mode, uint32_t selector, uint32_t activeTx,
                                           ExtAttnTable &steps)
{
    uint32_t mask = 0;
    if (Status status =
            LoopbackTransmitters(mode, "Tx external attenuator step calibration", selector, activeTx, mask);
        !status.ok())
        return status;
    for (uint32_t tx = 0; tx < kTransmitters; tx++) {
        if (!Selected(mask, tx))
            continue;
        // Attenuation of each step against step 0: nominally 2 dB a step.
        ExtAttnTable &table = extAttn_[tx];
        table[0] = 0.0;
        for (uint32_t i = 1; i < kExtAttnSteps; i++)
            table[i] = 2.0 * i + spread_.extAttnError[tx][i];
    }
    steps = extAttn_[FirstTransmitter(mask)];
    return Status::Ok();
}

}  // namespace q7sim
