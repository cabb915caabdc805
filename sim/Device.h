// The simulated device: one object per open interface, factory-fresh when the
// interface opens. Each subsystem is a member of its own class; operations
// reach them through the dispatcher in Interface.h.
#ifndef Q7SIM_DEVICE_H
#define Q7SIM_DEVICE_H

#include <cstdint>

#include "ModeControl.h"
#include "Receiver.h"
#include "Status.h"
#include "Transmitters.h"

namespace q7sim {

class Device {
public:
    // Device time advances by one 5 ms frame with every operation, never with
    // the wall clock, so that a scripted session prints the same every time.
    static constexpr uint64_t kTickUs = 5000;

    void Tick() { nowUs_ += kTickUs; }
    uint64_t nowUs() const { return nowUs_; }

    bool connected() const { return connected_; }
    Status Connect();
    Status Disconnect();

    // A transmitter is on in the Tx and loopback modes, when one is active.
    bool Transmitting() const;

    ModeControl modes;
    Receiver rx;
    Transmitters tx;

private:
    uint64_t nowUs_ = 0;
    bool connected_ = false;
};

}  // namespace q7sim

#endif
