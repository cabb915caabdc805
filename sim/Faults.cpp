#include "Faults.h"

namespace q7sim {

void FaultPlan::FailNext(const std::string &operation, unsigned count, const std::string &text)
{
    if (count == 0)
        failures_.erase(operation);
    else
        failures_[operation] = PlannedFailure{count, text};
}

std::optional<std::string> FaultPlan::TakeFailure(const std::string &operation)
{
    auto it = failures_.find(operation);
    if (it == failures_.end())
        return std::nullopt;
    std::string text = it->second.text;
    if (--it->second.remaining == 0)
        failures_.erase(it);
    return text;
}

// ---- Read-back faults ----

void FaultPlan::IgnoreNext(const std::string &operation, unsigned count)
{
    if (count == 0)
        readBack_.ignores.erase(operation);
    else
        readBack_.ignores[operation] = count;
}

void FaultPlan::SkewOutput(const std::string &operation, unsigned output, double offset)
{
    readBack_.skews[{operation, output}] = offset;
}

void FaultPlan::StickGpioPin(unsigned pin, unsigned level)
{
    const uint32_t bit = 1u << (pin % 32);
    readBack_.stuckMask |= bit;
    readBack_.stuckLevels = level != 0 ? readBack_.stuckLevels | bit : readBack_.stuckLevels & ~bit;
}

bool FaultPlan::TakeIgnore(const std::string &operation)
{
    auto it = readBack_.ignores.find(operation);
    if (it == readBack_.ignores.end())
        return false;
    if (--it->second == 0)
        readBack_.ignores.erase(it);
    return true;
}

double FaultPlan::OutputSkew(const std::string &operation, unsigned output) const
{
    auto it = readBack_.skews.find({operation, output});
    return it != readBack_.skews.end() ? it->second : 0.0;
}

uint32_t FaultPlan::WithStuckPins(uint32_t pinState) const
{
    return (pinState & ~readBack_.stuckMask) | readBack_.stuckLevels;
}

// ---- end of read-back faults ----

void FaultPlan::Clear()
{
    failures_.clear();
    connectAttempt_ = 1;
    readBack_ = ReadBackFaults{};
}

FaultPlan &Faults()
{
    static FaultPlan plan;
    return plan;
}

}  // namespace q7sim
