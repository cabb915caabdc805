#include "SimControl.h"

#include "Interface.h"

namespace q7sim::control {

void Reset()
{
    CloseInterface();
    Faults().Clear();
}

void FailNext(const char *operation, unsigned count, const char *text, unsigned skip)
{
    Faults().FailNext(operation, count, text, skip);
}

void RecordCalls() { Faults().RecordCalls(true); }

const std::vector<std::string> &Calls() { return Faults().Calls(); }

void ConnectSucceedsAtAttempt(unsigned attempt) { Faults().ConnectSucceedsAtAttempt(attempt); }

Device *OpenDevice()
{
    Q7_CalInterface *itf = CurrentInterface();
    return itf != nullptr ? &itf->device : nullptr;
}

}  // namespace q7sim::control
