// Device mode and band configuration: the settings every other subsystem of
// the device reads (which calibrations are allowed, where the receiver is tuned).
#ifndef Q7SIM_MODECONTROL_H
#define Q7SIM_MODECONTROL_H

#include <cstdint>

#include "Status.h"

namespace q7sim {

enum DutMode : uint32_t {
    kDutNormal = 0,
    kDutCalibration = 1,
    kDutTxCw = 2,
    kDutTxOfdma = 3,
    kDutAgcFreeRun = 4,
    kDutLoopback = 5,
};

struct DeviceMode {
    uint32_t dutMode = kDutNormal;
    uint32_t modulationType = 0;
    int32_t cwOffsetKHz = 0;
    uint32_t loopbackTx = 0;
};

struct BandConfig {
    uint32_t centerFreqKHz = 0;
    uint32_t bandwidthKHz = 0;
};

class ModeControl {
public:
    // Factory state: Normal mode, tuned to the test base station at 2500 MHz in 10 MHz.
    static constexpr BandConfig kFactoryBand{2500000, 10000};
    // The CW tone may sit anywhere within +-5 MHz of the centre frequency.
    static constexpr int32_t kMaxCwOffsetKHz = 5000;

    const DeviceMode &mode() const { return mode_; }
    const BandConfig &band() const { return band_; }

    Status SetDeviceMode(const DeviceMode &mode);
    Status SetBandConfig(const BandConfig &band);

    // Sets the mode without range checks: for tests that need a device
    // reporting values it would refuse to take.
    void ForceMode(const DeviceMode &mode) { mode_ = mode; }

private:
    DeviceMode mode_;
    BandConfig band_ = kFactoryBand;
};

}  // namespace q7sim

#endif
