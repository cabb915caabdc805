// The two transmitters TX1 and TX2.
#ifndef Q7SIM_TRANSMITTERS_H
#define Q7SIM_TRANSMITTERS_H

#include <cstdint>

namespace q7sim {

class Transmitters {
public:
    // Active transmitters, one bit each: bit 0 TX1, bit 1 TX2.
    static constexpr uint32_t kTx1 = 1;
    static constexpr uint32_t kTx2 = 2;

    uint32_t activeTx() const { return activeTx_; }

private:
    uint32_t activeTx_ = kTx1;
};

}  // namespace q7sim

#endif
