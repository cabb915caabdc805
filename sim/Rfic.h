// The RF chip's register file: banks of 16-bit registers reached over the
// serial control bus, immediately or at the next frame boundary (GTB).
#ifndef Q7SIM_RFIC_H
#define Q7SIM_RFIC_H

#include <array>
#include <cstdint>

#include "Status.h"

namespace q7sim {

class Rfic {
public:
    static constexpr uint32_t kBanks = 4;
    static constexpr uint32_t kRegistersPerBank = 64;
    // Register 0 of bank 0 holds the chip ID and cannot be written.
    static constexpr uint16_t kChipId = 0x7135;

    enum Timing : uint32_t { kGtbBased = 0, kImmediate = 1 };

    Rfic();

    Status Read(uint32_t bank, uint32_t reg, uint32_t timing, uint32_t &data) const;
    Status Write(uint32_t bank, uint32_t reg, uint32_t data, uint32_t timing);

private:
    static Status CheckAddress(uint32_t bank, uint32_t reg, uint32_t timing);

    std::array<std::array<uint16_t, kRegistersPerBank>, kBanks> registers_{};
};

}  // namespace q7sim

#endif
