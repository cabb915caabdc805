// The Rx spectrum capture: the power of each FFT bin of one OFDMA symbol,
// averaged by an IIR filter with alpha = 2^-shift, in dB. The bins run from
// the lowest frequency of the channel to the highest: left guard band,
// occupied subcarriers with the unused DC bin in the middle, right guard band.
#ifndef Q7SIM_RXSPECTRUM_H
#define Q7SIM_RXSPECTRUM_H

#include <cstdint>
#include <optional>
#include <random>

#include "ModeControl.h"
#include "Status.h"

namespace q7sim {

class RxSpectrum {
public:
    static constexpr uint32_t kMaxAlphaShift = 16;
    // Symbols of a 5 ms frame; symbol 0 is the preamble.
    static constexpr uint32_t kSymbolsPerFrame = 48;
    static constexpr double kNoiseFloorDb = 12.0;
    static constexpr double kSignalAboveNoiseDb = 36.0;

    struct Layout {
        uint32_t fftSize;
        uint32_t leftGuard;
        uint32_t rightGuard;
    };
    static Layout LayoutFor(uint32_t bandwidthKHz);
    // An OFDMA signal fills the channel when the receiver is tuned to the
    // test base station, or when the device loops its own transmitter back.
    static bool SignalInChannel(const BandConfig &band, const DeviceMode &mode, bool transmitting);

    Status Reset(uint32_t alphaShift, uint32_t symbolIndex);
    bool armed() const { return armed_; }
    uint32_t alphaShift() const { return alphaShift_; }
    uint32_t symbolIndex() const { return symbolIndex_; }

    // Fills at most `capacity` bins; `signalPresent` says whether an OFDMA
    // signal occupies the channel.
    Status Capture(uint32_t bandwidthKHz, bool signalPresent, uint32_t capacity, double *bins, uint32_t &length);

    // Test hook: the capture reports this length (it still fills at most
    // the capacity), as a faulty firmware might.
    void ForceLength(std::optional<uint32_t> length) { forcedLength_ = length; }

private:
    bool armed_ = false;
    uint32_t alphaShift_ = 0;
    uint32_t symbolIndex_ = 0;
    std::optional<uint32_t> forcedLength_;
    std::mt19937 rng_{0x5BEC7u};
};

}  // namespace q7sim

#endif
