// The simulated device: one object per open interface, factory-fresh when the
// interface opens. Each subsystem is a member of its own class; operations
// reach them through the dispatcher in Interface.h.
#ifndef Q7SIM_DEVICE_H
#define Q7SIM_DEVICE_H

#include <cstdint>

#include "AnalogIo.h"
#include "Calibration.h"
#include "Dsd.h"
#include "EchoLink.h"
#include "Gpio.h"
#include "ModeControl.h"
#include "Options.h"
#include "Receiver.h"
#include "Rfic.h"
#include "RxSpectrum.h"
#include "Status.h"
#include "Thermal.h"
#include "Transmitters.h"
#include "VersionInfo.h"
#include "WriteKeys.h"

namespace q7sim {

class Device {
public:
    // Device time advances by one 5 ms frame with every operation, never with
    // the wall clock, so that a scripted session prints the same every time.
    static constexpr uint64_t kTickUs = 5000;

    // The die warms while a transmitter is on during the frame.
    void Tick()
    {
        nowUs_ += kTickUs;
        thermal.Advance(kTickUs, Transmitting());
    }
    uint64_t nowUs() const { return nowUs_; }

    bool connected() const { return connected_; }
    Status Connect();
    Status Disconnect();

    // A transmitter is on in the Tx and loopback modes, when one is active.
    bool Transmitting() const;

    // The memory that DSD reads and writes address: the NVM mode (library
    // option 7) chooses the NVM's current section or the DSD buffer.
    DsdArea DsdTarget() { return dsd.Area(options.nvmMode()); }

    ModeControl modes;
    Receiver rx;
    Transmitters tx;
    Calibration cal;
    Gpio gpio;
    Rfic rfic;
    Thermal thermal;
    AnalogIo analog;
    RxSpectrum spectrum;
    VersionInfo versions;
    EchoLink echo;
    Dsd dsd;
    WriteKeys keys;
    Options options;

private:
    uint64_t nowUs_ = 0;
    bool connected_ = false;
};

}  // namespace q7sim

#endif
