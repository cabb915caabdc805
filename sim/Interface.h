// The open Cal API interface and the dispatcher that every extern "C" entry
// point goes through: handle check, device time, injected faults, the
// connection check, then the subsystem call, whose error text the interface
// keeps until the next call.
#ifndef Q7SIM_INTERFACE_H
#define Q7SIM_INTERFACE_H

#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <utility>

#include "Device.h"
#include "Faults.h"
#include "Q7CalAPI.h"

// The channel to the device that the library holds open with the interface:
// here a socket pair whose ends the library keeps both. Like a real channel
// it takes the lowest descriptor numbers free, and bytes that reach it from
// elsewhere (a program writing to a number it took for its own standard
// output) garble the device's protocol: every operation fails from then on.
class DeviceChannel {
public:
    DeviceChannel()
    {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_) != 0)
            ends_[0] = ends_[1] = -1;
    }
    DeviceChannel(const DeviceChannel &) = delete;
    DeviceChannel &operator=(const DeviceChannel &) = delete;
    ~DeviceChannel()
    {
        for (int end : ends_)
            if (end >= 0)
                close(end);
    }
    // The library itself never writes to the channel here.
    bool Garbled() const
    {
        char byte = 0;
        for (int end : ends_)
            if (end >= 0 && recv(end, &byte, 1, MSG_PEEK | MSG_DONTWAIT) > 0)
                return true;
        return false;
    }

private:
    int ends_[2];
};

struct Q7_CalInterface {
    DeviceChannel channel;
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
extern const char kGarbledChannelText[];
extern const char kNotConnectedText[];

// Opens the interface (a factory-fresh device) or returns the one already open.
Q7_CalInterface *OpenInterface();
void CloseInterface();
// The open interface, or null.
Q7_CalInterface *CurrentInterface();
// The open interface if `handle` is it, else null.
Q7_CalInterface *FindInterface(CalInterfaceHandle handle);

enum class Requires { Interface, Connection };

// Runs `op(Device &) -> Status` for the operation named `name`, called with
// `arguments` (for the test-only call log).
template <class Op>
ApiStatus Dispatch(CalInterfaceHandle handle, const char *name, CallArguments arguments, Requires requires_, Op &&op)
{
    Q7_CalInterface *itf = FindInterface(handle);
    if (itf == nullptr)
        return kInvalidHandleText;
    if (itf->channel.Garbled())
        return kGarbledChannelText;
    itf->device.Tick();
    if (auto failure = Faults().TakeFailure(name, arguments))
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
