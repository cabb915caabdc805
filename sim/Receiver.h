// The receiver: two receive paths Rx1 and Rx2 with their gain chains, the AGC,
// synchronisation to the test base station, and the measurements taken from
// the ADCs (RSSI, ADC power and clipping, CINR, thermal noise, frame counts).
//
// Measurements follow a small physical model: the base station's signal and
// the thermal noise at each antenna, amplified by the path's gain, meet the
// ADC with its own noise floor and full scale. Noise comes from a generator
// with a fixed seed and time is the device's own, so a session repeats exactly.
#ifndef Q7SIM_RECEIVER_H
#define Q7SIM_RECEIVER_H

#include <array>
#include <cstdint>
#include <optional>
#include <random>

#include "ModeControl.h"
#include "Status.h"

namespace q7sim {

// Antenna configurations.
enum RxAntConfig : uint32_t {
    kRx1Only = 0,
    kRx2Only = 1,
    kRx1AndRx2 = 2,
};

// AGC modes.
enum AgcMode : uint32_t {
    kAgcNormal = 0,
    kAgcBackOff = 1,
    kAgcFreeze = 2,
};

// The settings of one path's gain chain.
struct RxGainState {
    uint32_t extLna = 0;       // 0 off, 1 on
    uint32_t feGainState = 0;  // 0 low, 1 medium, 2 high
    int32_t pgaIndex = 0;      // 0 to 31
};

struct SyncReport {
    bool inSync = false;
    double freqOffsetPpm = 0.0;  // 0 when not in sync
    uint32_t syncFreqKHz = 0;    // 0 when not in sync
};

struct RssiReport {
    std::array<double, 2> rssiDbm{};
    double combinedRssiDbm = 0.0;
    std::array<double, 2> adcPowerDbm{};
    std::array<uint32_t, 2> clipCount{};
    uint32_t adcSamples = 0;
};

struct CinrReport {
    double combinedDb = 0.0;
    std::array<double, 2> antennaDb{};
};

struct FrameStatistics {
    uint32_t totalFrames = 0;
    uint32_t framesInError = 0;  // kFramesInErrorUnavailable when not in sync
};

class Receiver {
public:
    static constexpr unsigned kPaths = 2;
    // Set operations take this path number for both paths at once.
    static constexpr uint32_t kBothPaths = 2;

    // The test base station on the air.
    static constexpr uint32_t kBaseStationKHz = 2500000;
    static constexpr uint32_t kBaseStationBandwidthKHz = 10000;
    // Sync needs the centre frequency within this distance of the base station's.
    static constexpr uint32_t kSyncToleranceKHz = 50;
    // Time from a forced re-sync or a retune to the base station until sync.
    static constexpr uint64_t kSyncAcquisitionUs = 20000;
    static constexpr uint64_t kFrameUs = 5000;
    static constexpr uint32_t kFramesInErrorUnavailable = 0xFFFFFFFFu;

    // Gain chain: front-end states low/medium/high give max -26/-12/0 dB,
    // the PGA about 1 dB per index step, the external LNA 15 dB.
    static constexpr uint32_t kMaxFeGainState = 2;
    static constexpr int32_t kMaxPgaIndex = 31;
    static constexpr uint32_t kMaxAgcBackoffDb = 64;

    // ADC: full scale, and the floor of its own noise.
    static constexpr double kAdcFullScaleDbm = -10.0;
    static constexpr double kAdcFloorDbm = -70.0;
    // Lowest CINR the demodulator reports; also what an antenna without signal shows.
    static constexpr double kCinrFloorDb = -20.0;

    // Brings the receiver up to the device time and to the band it is tuned to.
    // Every receiver operation starts with it.
    void Update(const BandConfig &band, uint64_t nowUs);

    uint32_t antConfig() const { return antConfig_; }
    Status SetAntConfig(uint32_t antConfig);
    uint32_t agcMode() const { return agcMode_; }
    uint32_t agcBackoffDb() const { return agcBackoffDb_; }
    Status SetAgcMode(uint32_t mode, uint32_t backoffDb);

    Status GetGainState(uint32_t path, RxGainState &state, double &totalGainDb) const;
    Status SetGainState(uint32_t path, const RxGainState &state);
    // The gain from antenna to ADC, AGC back-off included.
    double TotalGainDb(unsigned path) const;
    bool PathEnabled(unsigned path) const;

    bool InSync() const;
    SyncReport Sync();
    void ForceReSync();

    RssiReport Rssi();
    CinrReport Cinr();
    std::array<double, 2> ThermalNoiseDbm();

    void ResetFrameStatistics();
    FrameStatistics frameStatistics() const;

    // Test hooks: make the device report values it would not take or produce.
    void ForceAntConfig(uint32_t antConfig) { antConfig_ = antConfig; }
    void ForceGainState(unsigned path, const RxGainState &state) { gain_.at(path) = state; }
    void ForceAdcCounts(uint32_t rx1Clips, uint32_t rx2Clips, uint32_t samples);
    void ForceFrameStatistics(uint32_t totalFrames, uint32_t framesInError);

private:
    // Powers at one path, in mW, before measurement noise.
    struct PathPowers {
        double signalMw = 0.0;   // the base station's signal at the antenna
        double noiseMw = 0.0;    // thermal noise at the antenna
        double adcMw = 0.0;      // at the ADC: amplified signal and noise, and the ADC floor
        double clipShare = 0.0;  // share of ADC samples that clip
    };

    bool Tuned() const;
    double NoiseFigureDb(unsigned path) const;
    double ThermalNoiseMw(unsigned path) const;
    double SignalMw(unsigned path) const;
    PathPowers Powers(unsigned path) const;
    double ExpectedCinrLinear(unsigned path) const;
    uint32_t AdcSamples() const;
    // Measurement noise, in dB.
    double Jitter(double sigmaDb);

    uint32_t antConfig_ = kRx1AndRx2;
    uint32_t agcMode_ = kAgcNormal;
    uint32_t agcBackoffDb_ = 0;
    // Factory gain: front end high, PGA 14, no external LNA: the test signal
    // sits about 12 dB below the ADC's full scale.
    std::array<RxGainState, kPaths> gain_{{{0, 2, 14}, {0, 2, 14}}};

    BandConfig band_ = ModeControl::kFactoryBand;
    uint64_t nowUs_ = 0;
    // When sync is (or will be) achieved; empty while not tuned to the base station.
    std::optional<uint64_t> syncAtUs_ = 0;

    uint64_t syncedUsSinceReset_ = 0;
    uint32_t framesCounted_ = 0;
    uint32_t framesInError_ = 0;

    struct AdcCounts {
        std::array<uint32_t, 2> clips;
        uint32_t samples;
    };
    std::optional<AdcCounts> forcedAdcCounts_;
    std::optional<FrameStatistics> forcedFrameStatistics_;

    std::mt19937 noise_{0x51A7u};
};

}  // namespace q7sim

#endif
