// The library's eight option slots: a description of each (OptionInfo) and
// its value. Option 7 is the NVM mode, which decides whether DSD reads and
// writes address the NVM or the DSD buffer in device memory.
#ifndef Q7SIM_OPTIONS_H
#define Q7SIM_OPTIONS_H

#include <array>
#include <cstdint>
#include <string>

#include "Q7CalAPI.h"
#include "Status.h"

namespace q7sim {

class Options {
public:
    static constexpr uint32_t kTraceLevel = 0;
    static constexpr uint32_t kCommandTimeoutMs = 1;
    static constexpr uint32_t kCommandRetries = 2;
    static constexpr uint32_t kKeyLifetimeMs = 5;
    static constexpr uint32_t kTraceTimestamps = 6;
    static constexpr uint32_t kNvmMode = Q7_OPTION_NVM_MODE;

    Options();
    // The records point into this object.
    Options(const Options &) = delete;
    Options &operator=(const Options &) = delete;

    // The slot's record, or null for a slot beyond 7.
    const OptionInfo *Info(uint32_t slot) const;
    // The records of a library that has no open interface.
    static const OptionInfo *FactoryInfo(uint32_t slot);

    Status Get(uint32_t id, int32_t *value) const;
    Status Set(uint32_t id, uint32_t value);

    uint32_t value(uint32_t id) const { return values_[id]; }
    uint32_t nvmMode() const { return values_[kNvmMode]; }

    // For tests: a slot described differently (a long name, reserved or not).
    void ForceInfo(uint32_t slot, const std::string &name, bool reserved);

private:
    Status CheckUsable(uint32_t id) const;

    std::array<std::string, Q7_OPTION_COUNT> names_;
    std::array<OptionInfo, Q7_OPTION_COUNT> info_;
    std::array<uint32_t, Q7_OPTION_COUNT> values_;
};

}  // namespace q7sim

#endif
