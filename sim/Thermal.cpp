#include "Thermal.h"

#include <cmath>

namespace q7sim {

void Thermal::Advance(uint64_t elapsedUs, bool transmitting)
{
    const double targetC = kAmbientC + (transmitting ? kTransmitRiseC : 0.0);
    // Settled: nothing changes, and no exponential to compute for every
    // operation (nor the math library to load at start).
    if (dieC_ == targetC)
        return;
    dieC_ += (targetC - dieC_) * (1.0 - std::exp(-static_cast<double>(elapsedUs) / kTimeConstantUs));
}

double Thermal::ReadC() const { return std::round(dieC_ / kSensorStepC) * kSensorStepC; }

}  // namespace q7sim
