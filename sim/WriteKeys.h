// The DSD write keys that Q7_RequestDSDWriteKey hands out: random and nonzero,
// drawn from the device's own fixed-seed generator, each good for one write
// within its lifetime (library option 5, in device time). A new request
// replaces the key issued before it.
#ifndef Q7SIM_WRITEKEYS_H
#define Q7SIM_WRITEKEYS_H

#include <cstdint>
#include <random>
#include <set>

#include "Status.h"

namespace q7sim {

class WriteKeys {
public:
    uint32_t Issue(uint64_t nowUs);
    // Ok for the key issued last, unused and within its lifetime; otherwise a
    // text that says why the key is refused.
    Status Check(uint32_t key, uint64_t nowUs, uint32_t lifetimeMs) const;
    // The key issued last has served its write.
    void Consume();

private:
    std::mt19937 rng_{0x7E1A0D5Du};
    uint32_t issued_ = 0;  // 0: no key outstanding
    uint64_t issuedAtUs_ = 0;
    std::set<uint32_t> used_;  // never issued again
};

}  // namespace q7sim

#endif
