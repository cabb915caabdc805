#include "SimControl.h"

#include "Interface.h"

namespace q7sim::control {

void Reset()
{
    CloseInterface();
    Faults().Clear();
}

void FailNext(const char *operation, unsigned count, const char *text) { Faults().FailNext(operation, count, text); }

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
