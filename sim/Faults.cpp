#include "Faults.h"

namespace q7sim {

void FaultPlan::FailNext(const std::string &operation, unsigned count, const std::string &text, unsigned skip)
{
    if (count == 0)
        failures_.erase(operation);
    else
        failures_[operation] = PlannedFailure{skip, count, text};
}

std::optional<std::string> FaultPlan::TakeFailure(const std::string &operation)
{
    if (recordCalls_)
        calls_.push_back(operation);
    auto it = failures_.find(operation);
    if (it == failures_.end())
        return std::nullopt;
    if (it->second.skip > 0) {
        it->second.skip--;
        return std::nullopt;
    }
    std::string text = it->second.text;
    if (--it->second.remaining == 0)
        failures_.erase(it);
    return text;
}

void FaultPlan::Clear()
{
    failures_.clear();
    connectAttempt_ = 1;
    recordCalls_ = false;
    calls_.clear();
}

FaultPlan &Faults()
{
    static FaultPlan plan;
    return plan;
}

}  // namespace q7sim
