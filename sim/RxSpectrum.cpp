#include "RxSpectrum.h"

#include <algorithm>
#include <cmath>

namespace q7sim {

RxSpectrum::Layout RxSpectrum::LayoutFor(uint32_t bandwidthKHz)
{
    // 512-point FFT up to 5 MHz, 1024-point above.
    if (bandwidthKHz <= 5000)
        return Layout{512, 46, 45};
    return Layout{1024, 92, 91};
}

bool RxSpectrum::SignalInChannel(const BandConfig &band, const DeviceMode &mode, bool transmitting)
{
    const bool tunedToTestSignal = band.centerFreqKHz == ModeControl::kFactoryBand.centerFreqKHz &&
                                   band.bandwidthKHz == ModeControl::kFactoryBand.bandwidthKHz;
    return tunedToTestSignal || (mode.dutMode == kDutLoopback && transmitting);
}

Status RxSpectrum::Reset(uint32_t alphaShift, uint32_t symbolIndex)
{
    if (alphaShift > kMaxAlphaShift)
        return Status::Errorf("IIR filter alpha shift %u is out of range (0-%u)", alphaShift, kMaxAlphaShift);
    if (symbolIndex >= kSymbolsPerFrame)
        return Status::Errorf("Symbol index %u is out of range (0-%u)", symbolIndex, kSymbolsPerFrame - 1);
    alphaShift_ = alphaShift;
    symbolIndex_ = symbolIndex;
    armed_ = true;
    return Status::Ok();
}

Status RxSpectrum::Capture(uint32_t bandwidthKHz, bool signalPresent, uint32_t capacity, double *bins,
                         uint32_t &length)
{
    if (!armed_)
        return Status::Error("The Rx spectrum capture is not set up (reset it first)");
    const Layout layout = LayoutFor(bandwidthKHz);
    const uint32_t reported = forcedLength_.value_or(std::min(layout.fftSize, capacity));
    const uint32_t filled = std::min(reported, capacity);

    // The IIR average of 2^(shift+1) - 1 symbols narrows the 5.6 dB spread of
    // a single bin's power in dB.
    const double spreadDb = 5.6 / std::sqrt(std::pow(2.0, alphaShift_ + 1.0) - 1.0);
    std::normal_distribution<double> noise(0.0, spreadDb);
    const uint32_t dc = layout.fftSize / 2;
    // The preamble uses every third subcarrier, each boosted by 9 dB.
    const bool preamble = symbolIndex_ == 0;
    for (uint32_t i = 0; i < filled; i++) {
        const uint32_t bin = i % layout.fftSize;
        bool occupied = signalPresent && bin >= layout.leftGuard && bin < layout.fftSize - layout.rightGuard &&
                        bin != dc;
        if (occupied && preamble)
            occupied = (bin - layout.leftGuard) % 3 == 0;
        double levelDb = kNoiseFloorDb;
        if (occupied)
            levelDb += kSignalAboveNoiseDb + (preamble ? 9.0 : 0.0);
        bins[i] = levelDb + noise(rng_);
    }
    length = reported;
    return Status::Ok();
}

}  // namespace q7sim
