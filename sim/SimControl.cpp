#include "SimControl.h"

#include "Interface.h"

namespace q7sim::control {

void Reset()
{
    CloseInterface();
    Faults().Clear();
}

void FailNext(const char *operation, unsigned count, const char *text) { Faults().FailNext(operation, count, text); }

void RecordCalls() { Faults().RecordCalls(true); }

const std::vector<std::string> &Calls() { return Faults().Calls(); }

const std::vector<std::vector<double>> &ArgumentsOfCalls() { return Faults().ArgumentsOfCalls(); }

void FailCall(const char *operation, unsigned nthCall, const char *text)
{
    Faults().FailCalls(operation, nthCall, 1, text);
}

void RefuseWriteKeys(unsigned count) { Faults().FailNext("Q7_RequestDSDWriteKey", count, "DSD write key refused"); }

void FlipBitOnRead(const char *operation, unsigned nthCall, uint32_t byteIndex, uint8_t mask)
{
    Faults().PlanDataFault(operation, nthCall, DataFault{DataFault::Kind::FlipBit, byteIndex, mask});
}

void ForgeWriteKey(unsigned nthCall)
{
    Faults().PlanDataFault("Q7_RequestDSDWriteKey", nthCall, DataFault{DataFault::Kind::ForgeKey, 0, 0});
}

void ShortRead(const char *operation, unsigned nthCall, uint32_t bytes)
{
    Faults().PlanDataFault(operation, nthCall, DataFault{DataFault::Kind::ShortRead, bytes, 0});
}

void FailWriteAfter(const char *operation, unsigned nthCall, uint32_t changedBytes)
{
    Faults().PlanDataFault(operation, nthCall, DataFault{DataFault::Kind::FailWrite, changedBytes, 0});
}

void OnEveryCall(std::function<void(const std::string &operation)> hook) { Faults().OnEveryCall(std::move(hook)); }

void IgnoreWrite(const char *operation, unsigned nthCall)
{
    Faults().PlanDataFault(operation, nthCall, DataFault{DataFault::Kind::IgnoreWrite, 0, 0});
}

void StopWriteAfter(const char *operation, unsigned nthCall, uint32_t changedBytes)
{
    Faults().PlanDataFault(operation, nthCall, DataFault{DataFault::Kind::StopWrite, changedBytes, 0});
}

void ConnectSucceedsAtAttempt(unsigned attempt) { Faults().ConnectSucceedsAtAttempt(attempt); }

// ---- Read-back faults ----
void IgnoreNext(const char *operation, unsigned count) { Faults().IgnoreNext(operation, count); }

void SkewOutput(const char *operation, unsigned output, double offset)
{
    Faults().SkewOutput(operation, output, offset);
}

void StickGpioPin(unsigned pin, unsigned level) { Faults().StickGpioPin(pin, level); }
// ---- end of read-back faults ----

Device *OpenDevice()
{
    Q7_CalInterface *itf = CurrentInterface();
    return itf != nullptr ? &itf->device : nullptr;
}

}  // namespace q7sim::control
