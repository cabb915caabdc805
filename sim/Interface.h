// The open Cal API interface and the dispatcher that every extern "C" entry
// point goes through: handle check, device time, injected faults, the
// connection check, then the subsystem call, whose error text the interface
// keeps until the next call.
#ifndef Q7SIM_INTERFACE_H
#define Q7SIM_INTERFACE_H

#include <string>
#include <utility>

#include "Device.h"
#include "Faults.h"
#include "Q7CalAPI.h"

struct Q7_CalInterface {
    q7sim::Device device;
    unsigned connectAttempts = 0;
    std::string lastError;

    ApiStatus Fail(std::string text)
    {
        lastError = std::move(text);
        return lastError.c_str();
    }
};

namespace q7sim {

extern const char kInvalidHandleText[];
extern const char kNotConnectedText[];

// Opens the interface (a factory-fresh device) or returns the one already open.
Q7_CalInterface *OpenInterface();
void CloseInterface();
// The open interface, or null.
Q7_CalInterface *CurrentInterface();
// The open interface if `handle` is it, else null.
Q7_CalInterface *FindInterface(CalInterfaceHandle handle);

enum class Requires { Interface, Connection };

// Runs `op(Device &) -> Status` for the operation named `name`.
template <class Op>
ApiStatus Dispatch(CalInterfaceHandle handle, const char *name, Requires requires_, Op &&op)
{
    Q7_CalInterface *itf = FindInterface(handle);
    if (itf == nullptr)
        return kInvalidHandleText;
    itf->device.Tick();
    if (auto failure = Faults().TakeFailure(name))
        return itf->Fail(*failure);
    if (requires_ == Requires::Connection && !itf->device.connected())
        return kNotConnectedText;
    if (Faults().TakeIgnore(name))
        return nullptr;
    Status status = op(itf->device);
    return status.ok() ? nullptr : itf->Fail(status.text());
}

// What `operation` reports as its out-value number `output`: the device's
// value with any planned skew added (see FaultPlan::SkewOutput).
template <class T>
T Reported(const char *operation, unsigned output, T value)
{
    const double skew = Faults().OutputSkew(operation, output);
    return skew == 0.0 ? value : static_cast<T>(static_cast<double>(value) + skew);
}

}  // namespace q7sim

#endif
