#include "ModeControl.h"

#include <iterator>

namespace q7sim {

namespace {

struct FrequencyBand {
    uint32_t lowKHz;
    uint32_t highKHz;
};

constexpr FrequencyBand kBands[] = {
    {2300000, 2400000},
    {2496000, 2690000},
    {3300000, 3800000},
};

constexpr uint32_t kBandwidthsKHz[] = {3500, 5000, 7000, 8750, 10000};

bool InSupportedBand(uint32_t centerKHz)
{
    for (const FrequencyBand &band : kBands) {
        if (centerKHz >= band.lowKHz && centerKHz <= band.highKHz)
            return true;
    }
    return false;
}

bool SupportedBandwidth(uint32_t bandwidthKHz)
{
    for (uint32_t supported : kBandwidthsKHz) {
        if (bandwidthKHz == supported)
            return true;
    }
    return false;
}

}  // namespace

Status ModeControl::SetDeviceMode(const DeviceMode &mode)
{
    if (mode.dutMode > kDutLoopback)
        return Status::Errorf("DUT mode %u is out of range (0-5)", mode.dutMode);
    if (mode.modulationType > 2)
        return Status::Errorf("Modulation type %u is out of range (0-2)", mode.modulationType);
    if (mode.cwOffsetKHz < -kMaxCwOffsetKHz || mode.cwOffsetKHz > kMaxCwOffsetKHz)
        return Status::Errorf("CW offset %d kHz is out of range (%d to %d kHz)", mode.cwOffsetKHz,
                              -kMaxCwOffsetKHz, kMaxCwOffsetKHz);
    if (mode.loopbackTx > 3)
        return Status::Errorf("Loopback TX %u is out of range (0-3)", mode.loopbackTx);
    mode_ = mode;
    return Status::Ok();
}

Status ModeControl::SetBandConfig(const BandConfig &band)
{
    if (!InSupportedBand(band.centerFreqKHz))
        return Status::Errorf("Center frequency %u kHz is outside the supported bands "
                              "(2300000-2400000, 2496000-2690000, 3300000-3800000 kHz)",
                              band.centerFreqKHz);
    if (!SupportedBandwidth(band.bandwidthKHz))
        return Status::Errorf("Bandwidth %u kHz is not supported (3500, 5000, 7000, 8750, 10000 kHz)",
                              band.bandwidthKHz);
    band_ = band;
    return Status::Ok();
}

}  // namespace q7sim
