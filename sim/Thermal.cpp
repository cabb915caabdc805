#include "Thermal.h"

#include <cmath>

namespace q7sim {

void Thermal::Advance(uint64_t elapsedUs, bool transmitting)
{
    const double targetC = kAmbientC + (transmitting ? kTransmitRiseC : 0.0);
    dieC_ += (targetC - dieC_) * (1.0 - std::exp(-static_cast<double>(elapsedUs) / kTimeConstantUs));
}

double Thermal::ReadC() const { return std::round(dieC_ / kSensorStepC) * kSensorStepC; }

}  // namespace q7sim
