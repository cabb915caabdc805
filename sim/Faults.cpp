#include "Faults.h"

#include <algorithm>

namespace q7sim {

void DataFault::ApplyToRead(uint8_t *data, uint32_t count) const
{
    if (kind == Kind::FlipBit && count != 0)
        data[byteIndex % count] ^= mask;
}

uint32_t DataFault::ApplyToWrite(const std::vector<uint8_t> &before, uint8_t *memory, uint32_t written) const
{
    switch (kind) {
    case Kind::IgnoreWrite:
        std::copy(before.begin(), before.end(), memory);
        return written;
    case Kind::StopWrite: {
        // The write went in address order: changes after the first
        // `byteIndex` changed bytes never happened.
        uint32_t changed = 0;
        for (size_t i = 0; i < before.size(); i++) {
            if (memory[i] == before[i])
                continue;
            if (changed < byteIndex)
                changed++;
            else
                memory[i] = before[i];
        }
        return std::min(written, byteIndex);
    }
    case Kind::FlipBit:
        break;
    }
    return written;
}

void FaultPlan::FailCalls(const std::string &operation, unsigned nthCall, unsigned count, const std::string &text)
{
    if (count == 0 || nthCall == 0)
        failures_.erase(operation);
    else
        failures_[operation] = PlannedFailure{nthCall - 1, count, text};
}

void FaultPlan::PlanDataFault(const std::string &operation, unsigned nthCall, DataFault fault)
{
    if (nthCall != 0)
        dataFaults_.emplace(operation, PlannedDataFault{nthCall - 1, fault});
}

std::optional<std::string> FaultPlan::TakeFailure(const std::string &operation)
{
    auto it = failures_.find(operation);
    if (it == failures_.end())
        return std::nullopt;
    if (it->second.callsBefore > 0) {
        it->second.callsBefore--;
        return std::nullopt;
    }
    std::string text = it->second.text;
    if (--it->second.remaining == 0)
        failures_.erase(it);
    return text;
}

std::optional<DataFault> FaultPlan::TakeDataFault(const std::string &operation)
{
    std::optional<DataFault> due;
    auto [first, last] = dataFaults_.equal_range(operation);
    for (auto it = first; it != last;) {
        if (it->second.callsBefore > 0) {
            it->second.callsBefore--;
            ++it;
        } else if (!due) {
            due = it->second.fault;
            it = dataFaults_.erase(it);
        } else {
            ++it;  // a second fault for the same call waits for the next one
        }
    }
    return due;
}

void FaultPlan::Clear()
{
    failures_.clear();
    dataFaults_.clear();
    connectAttempt_ = 1;
}

FaultPlan &Faults()
{
    static FaultPlan plan;
    return plan;
}

}  // namespace q7sim
