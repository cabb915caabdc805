#include "Faults.h"

#include <algorithm>

namespace q7sim {

uint32_t DataFault::ApplyToRead(const std::vector<uint8_t> &before, uint8_t *data, uint32_t count) const
{
    if (kind == Kind::FlipBit && count != 0)
        data[byteIndex % count] ^= mask;
    if (kind != Kind::ShortRead || byteIndex >= count)
        return count;
    // The bytes past those delivered keep what the caller's buffer held.
    std::copy(before.begin() + byteIndex, before.begin() + count, data + byteIndex);
    return byteIndex;
}

uint32_t DataFault::ApplyToWrite(const std::vector<uint8_t> &before, uint8_t *memory, uint32_t written) const
{
    switch (kind) {
    case Kind::IgnoreWrite:
        std::copy(before.begin(), before.end(), memory);
        return written;
    case Kind::StopWrite:
    case Kind::FailWrite: {
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
    case Kind::ShortRead:
    case Kind::ForgeKey:
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

std::optional<std::string> FaultPlan::TakeFailure(const std::string &operation, CallArguments arguments)
{
    if (recordCalls_) {
        calls_.push_back(operation);
        callArguments_.emplace_back();
        for (const CallArgument &argument : arguments)
            callArguments_.back().push_back(argument.value);
    }
    if (onCall_)
        onCall_(operation);
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
    dataFaults_.clear();
    connectAttempt_ = 1;
    readBack_ = ReadBackFaults{};
    onCall_ = nullptr;
    recordCalls_ = false;
    calls_.clear();
    callArguments_.clear();
}

FaultPlan &Faults()
{
    static FaultPlan plan;
    return plan;
}

}  // namespace q7sim
