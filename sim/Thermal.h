// The die temperature: it settles towards the ambient figure, and towards a
// higher one while a transmitter is on, with a time constant of three seconds
// of device time (some six hundred operations), so that a session of commands
// in a transmit mode sees it climb. The sensor reads in steps of 1/16 degree.
#ifndef Q7SIM_THERMAL_H
#define Q7SIM_THERMAL_H

#include <cstdint>

namespace q7sim {

class Thermal {
public:
    static constexpr double kAmbientC = 33.0;
    static constexpr double kTransmitRiseC = 11.0;
    static constexpr double kTimeConstantUs = 3e6;
    static constexpr double kSensorStepC = 1.0 / 16.0;

    // Lets `elapsedUs` of device time pass with the transmitters on or off.
    void Advance(uint64_t elapsedUs, bool transmitting);
    double dieC() const { return dieC_; }
    // What the temperature sensor reads.
    double ReadC() const;

    // Test hook: sets the die temperature, as a climate chamber would.
    void ForceTemperature(double degreesC) { dieC_ = degreesC; }

private:
    double dieC_ = kAmbientC;
};

}  // namespace q7sim

#endif
