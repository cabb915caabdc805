// The loopback calibrations: TR switches, LC trim over the scan list, Tx gain
// tables, Tx output-power frequency correction, FE gain steps and the Tx
// external attenuator steps. Results come from this unit's own analogue
// spread (fixed at manufacture) and are kept until the next calibration.
#ifndef Q7SIM_CALIBRATION_H
#define Q7SIM_CALIBRATION_H

#include <array>
#include <cstdint>
#include <optional>

#include "ModeControl.h"
#include "Status.h"

namespace q7sim {

class Calibration {
public:
    static constexpr uint32_t kScanListSize = 12;
    static constexpr uint32_t kTxGainEntries = 37;
    static constexpr uint32_t kExtAttnSteps = 20;
    static constexpr uint32_t kTransmitters = 2;
    static constexpr uint32_t kRxPaths = 2;

    // The scan list the calibrations run over, in kHz.
    static constexpr std::array<uint32_t, kScanListSize> kScanListKHz{
        2305000, 2345000, 2385000, 2506000, 2546000, 2586000,
        2626000, 2666000, 3400000, 3500000, 3600000, 3700000,
    };

    // Per antenna: 0 = Tx off and Rx on, 1 = Tx on and Rx off.
    struct TrSwitch {
        uint32_t ant1 = 0;
        uint32_t ant2 = 0;
    };

    // One Rx1/Rx2 pair per quantity, in dB.
    struct FESteps {
        std::array<double, kRxPaths> pgaGainCorrection{};
        std::array<double, kRxPaths> lnaMidGainStep{};
        std::array<double, kRxPaths> lnaHighGainStep{};
        std::array<double, kRxPaths> lnaExtGainStep{};
    };

    using TxGainTable = std::array<double, kTxGainEntries>;
    using ExtAttnTable = std::array<double, kExtAttnSteps>;

    Calibration();

    Status SetTRSwitch(uint32_t ant1, uint32_t ant2);

    // `activeTx` is the transmitter mask that selector 0 stands for.
    Status CalibrateLCTrim(const DeviceMode &mode, std::array<int32_t, kScanListSize> &trim, uint32_t &count);
    Status CalibrateTxGains(const DeviceMode &mode, uint32_t selector, uint32_t activeTx, uint32_t centerKHz,
                            TxGainTable &gains);
    Status CalibrateTxPoutFreqCorr(const DeviceMode &mode, uint32_t activeTx, uint32_t scanIndex);
    Status CalibrateFESteps(const DeviceMode &mode, uint32_t scanIndex, double rx1Dbm, double rx2Dbm,
                            FESteps &steps);
    Status CalibrateTxExtAttnStep(const DeviceMode &mode, uint32_t selector, uint32_t activeTx, ExtAttnTable &steps);

    // What the device holds from the last calibrations.
    const TrSwitch &trSwitch() const { return tr_; }
    const std::array<int32_t, kScanListSize> &lcTrim() const { return lcTrim_; }
    const TxGainTable &txGains(uint32_t tx) const { return txGains_.at(tx); }
    uint32_t txGainsCenterKHz(uint32_t tx) const { return txGainsCenterKHz_.at(tx); }
    // Correction in dB per transmitter and scan-list index; empty until calibrated.
    const std::optional<double> &poutCorrection(uint32_t tx, uint32_t scanIndex) const
    {
        return poutCorrectionDb_.at(tx).at(scanIndex);
    }
    const FESteps &feSteps() const { return feSteps_; }
    const ExtAttnTable &extAttnSteps(uint32_t tx) const { return extAttn_.at(tx); }

    // Makes the LC trim calibration report this many entries (it still fills
    // at most 12): for tests of what the program does with such a count.
    void ForceLCTrimCount(std::optional<uint32_t> count) { forcedLcTrimCount_ = count; }

private:
    // The unit's analogue spread, drawn once from a fixed seed.
    struct Spread {
        int32_t lcTrimOffset = 0;
        std::array<std::array<double, kTxGainEntries>, kTransmitters> gainStepError{};
        std::array<double, kTransmitters> gainOffsetDb{};
        std::array<std::array<double, kExtAttnSteps>, kTransmitters> extAttnError{};
        std::array<double, kTransmitters> poutOffsetDb{};
        FESteps feOffset;
    };

    Spread spread_;
    TrSwitch tr_;
    std::array<int32_t, kScanListSize> lcTrim_{};
    std::array<TxGainTable, kTransmitters> txGains_{};
    std::array<uint32_t, kTransmitters> txGainsCenterKHz_{};
    std::array<std::array<std::optional<double>, kScanListSize>, kTransmitters> poutCorrectionDb_{};
    FESteps feSteps_;
    std::array<ExtAttnTable, kTransmitters> extAttn_{};
    std::optional<uint32_t> forcedLcTrimCount_;
};

}  // namespace q7sim

#endif
