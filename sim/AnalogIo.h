// The general-purpose converters: a 10-bit GP ADC behind a four-way mux and
// a GP DAC with four outputs of 0 to 3.3 V. ADC inputs: 0 loops back DAC
// output 0, 1 the temperature sensor, 2 the 3.3 V supply through a halving
// divider, 3 the Tx power detector.
#ifndef Q7SIM_ANALOGIO_H
#define Q7SIM_ANALOGIO_H

#include <array>
#include <cstdint>
#include <random>

#include "Status.h"

namespace q7sim {

class AnalogIo {
public:
    static constexpr uint32_t kMuxInputs = 4;
    static constexpr uint32_t kDacOutputs = 4;
    static constexpr double kFullScaleV = 3.3;
    static constexpr uint32_t kAdcMax = 1023;
    enum AdcInput : uint32_t { kDacLoopBack = 0, kTemperatureSensor = 1, kSupplyMonitor = 2, kTxPowerDetector = 3 };

    Status SetDac(uint32_t output, double volts);
    double dac(uint32_t output) const { return dac_.at(output); }

    // One conversion of the mux input; the sensors' states come from the device.
    Status ReadAdc(uint32_t mux, double dieC, bool transmitting, uint32_t &value);

private:
    std::array<double, kDacOutputs> dac_{};
    std::mt19937 rng_{0xADC0u};
};

}  // namespace q7sim

#endif
