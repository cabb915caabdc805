#include "AnalogIo.h"

#include <algorithm>
#include <cmath>

namespace q7sim {

Status AnalogIo::SetDac(uint32_t output, double volts)
{
    if (output >= kDacOutputs)
        return Status::Errorf("GP DAC mux setting %u is out of range (0-%u)", output, kDacOutputs - 1);
    if (!(volts >= 0.0 && volts <= kFullScaleV))
        return Status::Errorf("GP DAC voltage %.3f V is out of range (0-3.3 V)", volts);
    dac_[output] = volts;
    return Status::Ok();
}

Status AnalogIo::ReadAdc(uint32_t mux, double dieC, bool transmitting, uint32_t &value)
{
    if (mux >= kMuxInputs)
        return Status::Errorf("GP ADC mux setting %u is out of range (0-%u)", mux, kMuxInputs - 1);
    double volts = 0.0;
    switch (mux) {
    case kDacLoopBack:
        volts = dac_[0];
        break;
    case kTemperatureSensor:
        volts = 0.5 + 0.01 * dieC;
        break;
    case kSupplyMonitor:
        volts = kFullScaleV / 2.0;
        break;
    default:
        volts = transmitting ? 1.2 : 0.1;
        break;
    }
    // One LSB of conversion noise.
    long code = std::lround(volts / kFullScaleV * kAdcMax) + std::uniform_int_distribution<long>(-1, 1)(rng_);
    value = static_cast<uint32_t>(std::clamp<long>(code, 0, kAdcMax));
    return Status::Ok();
}

}  // namespace q7sim
