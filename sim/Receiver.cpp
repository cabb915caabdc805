#include "Receiver.h"

#include <algorithm>
#include <cmath>

namespace q7sim {

namespace {

// The base station's signal at each antenna, in dBm (the antennas see it a
// little differently).
constexpr std::array<double, Receiver::kPaths> kSignalAtAntennaDbm = {-59.4, -61.1};
// Gain of each chain with the front end high, PGA index 0 and no external
// LNA; the two chains differ slightly.
constexpr std::array<double, Receiver::kPaths> kBaseGainDb = {24.0, 23.5};
constexpr double kExtLnaGainDb = 15.0;
constexpr double kPgaStepDb = 1.0;
constexpr double kFeLowDb = -26.0;
constexpr double kFeMediumDb = -12.0;

// Noise figure: 5 dB behind the external LNA, otherwise 6 dB, rising as the
// front end lowers its gain.
constexpr double kNoiseFigureExtLnaDb = 5.0;
constexpr double kNoiseFigureDb = 6.0;
constexpr double kNoiseFigureFeLowDb = 1.0;
constexpr double kNoiseFigureFeMediumDb = 0.5;
constexpr double kThermalNoiseDbmPerHz = -174.0;

// A clipped ADC still reports a little above full scale, never more.
constexpr double kAdcMaxReadingDb = 2.0;
// Distortion power from clipping, relative to the signal, per share of clipped samples.
constexpr double kClipDistortionPerShare = 10.0;
// The demodulator's own limit on CINR.
constexpr double kImplementationCinrDb = 35.0;
// Frame errors set in around this CINR.
constexpr double kFrameErrorCinrDb = 6.0;
constexpr double kFrameErrorSlopeDb = 1.2;

// The crystal offset against the base station, drifting slowly.
constexpr double kFreqOffsetPpm = 0.42;
constexpr double kFreqDriftPpm = 0.25;
constexpr double kFreqDriftPeriodUs = 30e6;

constexpr double kPi = 3.14159265358979323846;

double ToMw(double dbm) { return std::pow(10.0, dbm / 10.0); }
double ToDbm(double mw) { return 10.0 * std::log10(mw); }

}  // namespace

void Receiver::Update(const BandConfig &band, uint64_t nowUs)
{
    if (nowUs > nowUs_) {
        if (syncAtUs_) {
            uint64_t syncedFrom = std::max(nowUs_, *syncAtUs_);
            if (syncedFrom < nowUs)
                syncedUsSinceReset_ += nowUs - syncedFrom;
        }
        nowUs_ = nowUs;
        auto frames = static_cast<uint32_t>(syncedUsSinceReset_ / kFrameUs);
        if (frames > framesCounted_) {
            double cinrDb = ToDbm(ExpectedCinrLinear(0) + ExpectedCinrLinear(1));
            double errorRate = 1.0 / (1.0 + std::exp((cinrDb - kFrameErrorCinrDb) / kFrameErrorSlopeDb));
            framesInError_ += std::binomial_distribution<uint32_t>(frames - framesCounted_, errorRate)(noise_);
            framesCounted_ = frames;
        }
    }
    if (band.centerFreqKHz != band_.centerFreqKHz || band.bandwidthKHz != band_.bandwidthKHz) {
        band_ = band;
        syncAtUs_.reset();
        if (Tuned())
            syncAtUs_ = nowUs_ + kSyncAcquisitionUs;
    }
}

bool Receiver::Tuned() const
{
    uint32_t center = band_.centerFreqKHz;
    uint32_t distance = center > kBaseStationKHz ? center - kBaseStationKHz : kBaseStationKHz - center;
    return distance <= kSyncToleranceKHz;
}

Status Receiver::SetAntConfig(uint32_t antConfig)
{
    if (antConfig > kRx1AndRx2)
        return Status::Errorf("Rx antenna configuration %u is out of range (0-2)", antConfig);
    antConfig_ = antConfig;
    return Status::Ok();
}

Status Receiver::SetAgcMode(uint32_t mode, uint32_t backoffDb)
{
    if (mode > kAgcFreeze)
        return Status::Errorf("AGC mode %u is out of range (0-2)", mode);
    if (backoffDb > kMaxAgcBackoffDb)
        return Status::Errorf("AGC backoff %u dB is out of range (0-%u dB)", backoffDb, kMaxAgcBackoffDb);
    agcMode_ = mode;
    agcBackoffDb_ = backoffDb;
    return Status::Ok();
}

Status Receiver::GetGainState(uint32_t path, RxGainState &state, double &totalGainDb) const
{
    if (path >= kPaths)
        return Status::Errorf("Rx path %u is out of range (0-1)", path);
    state = gain_[path];
    totalGainDb = TotalGainDb(path);
    return Status::Ok();
}

Status Receiver::SetGainState(uint32_t path, const RxGainState &state)
{
    if (path > kBothPaths)
        return Status::Errorf("Rx path %u is out of range (0-2)", path);
    if (state.extLna > 1)
        return Status::Errorf("External LNA %u is out of range (0-1)", state.extLna);
    if (state.feGainState > kMaxFeGainState)
        return Status::Errorf("Front end gain state %u is out of range (0-%u)", state.feGainState, kMaxFeGainState);
    if (state.pgaIndex < 0 || state.pgaIndex > kMaxPgaIndex)
        return Status::Errorf("PGA gain index %d is out of range (0-%d)", state.pgaIndex, kMaxPgaIndex);
    for (unsigned p = 0; p < kPaths; p++) {
        if (path == p || path == kBothPaths)
            gain_[p] = state;
    }
    return Status::Ok();
}

double Receiver::TotalGainDb(unsigned path) const
{
    const RxGainState &state = gain_.at(path);
    double gain = kBaseGainDb[path] + kPgaStepDb * state.pgaIndex;
    if (state.feGainState == 0)
        gain += kFeLowDb;
    else if (state.feGainState == 1)
        gain += kFeMediumDb;
    if (state.extLna != 0)
        gain += kExtLnaGainDb;
    // The back-off AGC holds the gain that many dB below the chain's setting.
    if (agcMode_ == kAgcBackOff)
        gain -= agcBackoffDb_;
    return gain;
}

bool Receiver::PathEnabled(unsigned path) const { return antConfig_ == kRx1AndRx2 || antConfig_ == path; }

double Receiver::NoiseFigureDb(unsigned path) const
{
    const RxGainState &state = gain_.at(path);
    if (state.extLna != 0)
        return kNoiseFigureExtLnaDb;
    if (state.feGainState == 0)
        return kNoiseFigureDb + kNoiseFigureFeLowDb;
    if (state.feGainState == 1)
        return kNoiseFigureDb + kNoiseFigureFeMediumDb;
    return kNoiseFigureDb;
}

double Receiver::ThermalNoiseMw(unsigned path) const
{
    return ToMw(kThermalNoiseDbmPerHz + 10.0 * std::log10(band_.bandwidthKHz * 1000.0) + NoiseFigureDb(path));
}

double Receiver::SignalMw(unsigned path) const
{
    // The share of the base station's channel that falls into the tuned channel.
    double stationLow = kBaseStationKHz - kBaseStationBandwidthKHz / 2.0;
    double stationHigh = kBaseStationKHz + kBaseStationBandwidthKHz / 2.0;
    double low = band_.centerFreqKHz - band_.bandwidthKHz / 2.0;
    double high = band_.centerFreqKHz + band_.bandwidthKHz / 2.0;
    double overlap = std::min(high, stationHigh) - std::max(low, stationLow);
    if (overlap <= 0.0)
        return 0.0;
    return ToMw(kSignalAtAntennaDbm[path]) * overlap / kBaseStationBandwidthKHz;
}

Receiver::PathPowers Receiver::Powers(unsigned path) const
{
    PathPowers powers;
    powers.adcMw = ToMw(kAdcFloorDbm);
    // A path switched off by the antenna configuration passes nothing to its ADC.
    if (!PathEnabled(path))
        return powers;
    powers.signalMw = SignalMw(path);
    powers.noiseMw = ThermalNoiseMw(path);
    double amplifiedMw = (powers.signalMw + powers.noiseMw) * ToMw(TotalGainDb(path));
    powers.adcMw += amplifiedMw;
    // Complex Gaussian samples exceed full scale with probability exp(-full scale / power).
    powers.clipShare = std::exp(-ToMw(kAdcFullScaleDbm) / amplifiedMw);
    return powers;
}

double Receiver::ExpectedCinrLinear(unsigned path) const
{
    PathPowers powers = Powers(path);
    if (powers.signalMw <= 0.0)
        return 0.0;
    double adcNoiseAtAntennaMw = ToMw(kAdcFloorDbm - TotalGainDb(path));
    double distortionMw = powers.signalMw * (powers.clipShare * kClipDistortionPerShare +
                                             1.0 / ToMw(kImplementationCinrDb));
    return powers.signalMw / (powers.noiseMw + adcNoiseAtAntennaMw + distortionMw);
}

uint32_t Receiver::AdcSamples() const
{
    // One frame of samples at 28/25 of the channel bandwidth.
    return static_cast<uint32_t>(uint64_t{band_.bandwidthKHz} * 28 / 5);
}

double Receiver::Jitter(double sigmaDb) { return std::normal_distribution<double>(0.0, sigmaDb)(noise_); }

bool Receiver::InSync() const { return syncAtUs_ && *syncAtUs_ <= nowUs_; }

SyncReport Receiver::Sync()
{
    SyncReport report;
    if (!InSync())
        return report;
    report.inSync = true;
    report.freqOffsetPpm =
        kFreqOffsetPpm + kFreqDriftPpm * std::sin(2.0 * kPi * nowUs_ / kFreqDriftPeriodUs) + Jitter(0.004);
    report.syncFreqKHz = band_.centerFreqKHz;
    return report;
}

void Receiver::ForceReSync()
{
    if (syncAtUs_)
        syncAtUs_ = nowUs_ + kSyncAcquisitionUs;
}

RssiReport Receiver::Rssi()
{
    RssiReport report;
    report.adcSamples = AdcSamples();
    double combinedMw = 0.0;
    double allMw = 0.0;
    for (unsigned p = 0; p < kPaths; p++) {
        PathPowers powers = Powers(p);
        double adcDbm = std::min(ToDbm(powers.adcMw), kAdcFullScaleDbm + kAdcMaxReadingDb) + Jitter(0.15);
        report.adcPowerDbm[p] = adcDbm;
        // RSSI is the ADC reading referred back to the antenna.
        report.rssiDbm[p] = adcDbm - TotalGainDb(p);
        report.clipCount[p] =
            powers.clipShare > 0.0
                ? std::binomial_distribution<uint32_t>(report.adcSamples, std::min(powers.clipShare, 1.0))(noise_)
                : 0;
        allMw += ToMw(report.rssiDbm[p]);
        if (PathEnabled(p))
            combinedMw += ToMw(report.rssiDbm[p]);
    }
    // The receiving paths combined, or both when neither receives.
    report.combinedRssiDbm = ToDbm(combinedMw > 0.0 ? combinedMw : allMw);
    if (forcedAdcCounts_) {
        report.clipCount = forcedAdcCounts_->clips;
        report.adcSamples = forcedAdcCounts_->samples;
    }
    return report;
}

CinrReport Receiver::Cinr()
{
    CinrReport report;
    double combined = 0.0;
    for (unsigned p = 0; p < kPaths; p++) {
        double cinr = ExpectedCinrLinear(p);
        if (cinr <= 0.0) {
            report.antennaDb[p] = kCinrFloorDb;
            continue;
        }
        double cinrDb = ToDbm(cinr) + Jitter(0.2);
        combined += ToMw(cinrDb);
        report.antennaDb[p] = std::max(cinrDb, kCinrFloorDb);
    }
    // Maximum-ratio combining adds the antennas' ratios.
    report.combinedDb = combined > 0.0 ? std::max(ToDbm(combined), kCinrFloorDb) : kCinrFloorDb;
    return report;
}

std::array<double, 2> Receiver::ThermalNoiseDbm()
{
    std::array<double, 2> noise{};
    for (unsigned p = 0; p < kPaths; p++) {
        // A path that is switched off sees only its ADC's floor.
        double noiseDbm = PathEnabled(p) ? ToDbm(ThermalNoiseMw(p)) : kAdcFloorDbm - TotalGainDb(p);
        noise[p] = noiseDbm + Jitter(0.1);
    }
    return noise;
}

void Receiver::ResetFrameStatistics()
{
    syncedUsSinceReset_ = 0;
    framesCounted_ = 0;
    framesInError_ = 0;
    forcedFrameStatistics_.reset();
}

FrameStatistics Receiver::frameStatistics() const
{
    if (forcedFrameStatistics_)
        return *forcedFrameStatistics_;
    return FrameStatistics{framesCounted_, InSync() ? framesInError_ : kFramesInErrorUnavailable};
}

void Receiver::ForceAdcCounts(uint32_t rx1Clips, uint32_t rx2Clips, uint32_t samples)
{
    forcedAdcCounts_ = AdcCounts{{rx1Clips, rx2Clips}, samples};
}

void Receiver::ForceFrameStatistics(uint32_t totalFrames, uint32_t framesInError)
{
    forcedFrameStatistics_ = FrameStatistics{totalFrames, framesInError};
}

}  // namespace q7sim
