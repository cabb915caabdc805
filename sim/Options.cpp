#include "Options.h"

namespace q7sim {

namespace {

struct OptionSlot {
    const char *name;
    uint32_t defaultValue;
    uint32_t minValue;
    uint32_t maxValue;
    bool reserved;
};

// Slots 3 and 4 are kept for later library versions.
constexpr OptionSlot kSlots[Q7_OPTION_COUNT] = {
    {"Trace level (0-3)", 0, 0, 3, false},
    {"Command timeout (ms)", 2000, 100, 60000, false},
    {"Command retries (0-5)", 2, 0, 5, false},
    {"", 0, 0, 0, true},
    {"", 0, 0, 0, true},
    {"DSD key lifetime (ms)", 10000, 100, 600000, false},
    {"Trace timestamps (0/1)", 1, 0, 1, false},
    {"NVM mode (0=NVM 1/2=buffer)", 0, 0, 2, false},
};

}  // namespace

Options::Options()
{
    for (uint32_t slot = 0; slot < Q7_OPTION_COUNT; slot++) {
        const OptionSlot &def = kSlots[slot];
        names_[slot] = def.name;
        info_[slot] = OptionInfo{slot, names_[slot].c_str(), def.defaultValue, def.minValue, def.maxValue,
                                 def.reserved ? 1u : 0u};
        values_[slot] = def.defaultValue;
    }
}

const OptionInfo *Options::Info(uint32_t slot) const { return slot < Q7_OPTION_COUNT ? &info_[slot] : nullptr; }

const OptionInfo *Options::FactoryInfo(uint32_t slot)
{
    static const Options factory;
    return factory.Info(slot);
}

Status Options::CheckUsable(uint32_t id) const
{
    if (id >= Q7_OPTION_COUNT)
        return Status::Errorf("Option ID %u is out of range (0-%u)", id, Q7_OPTION_COUNT - 1);
    if (info_[id].u32Reserved != 0)
        return Status::Errorf("Option %u is reserved", id);
    return Status::Ok();
}

Status Options::Get(uint32_t id, int32_t *value) const
{
    Status status = CheckUsable(id);
    if (status.ok())
        *value = static_cast<int32_t>(values_[id]);
    return status;
}

Status Options::Set(uint32_t id, uint32_t value)
{
    Status status = CheckUsable(id);
    if (!status.ok())
        return status;
    const OptionInfo &info = info_[id];
    if (value < info.u32MinValue || value > info.u32MaxValue)
        return Status::Errorf("Option %u value %u is out of range (%u-%u)", id, value, info.u32MinValue,
                              info.u32MaxValue);
    values_[id] = value;
    return Status::Ok();
}

void Options::ForceInfo(uint32_t slot, const std::string &name, bool reserved)
{
    names_[slot] = name;
    info_[slot].sName = names_[slot].c_str();
    info_[slot].u32Reserved = reserved ? 1 : 0;
}

}  // namespace q7sim
