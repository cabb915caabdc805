#include "Gpio.h"

namespace q7sim {

Status Gpio::SetPinState(uint32_t pin, uint32_t value)
{
    if (pin >= kPins)
        return Status::Errorf("GPIO pin %u is out of range (0-%u)", pin, kPins - 1);
    if (value > 1)
        return Status::Errorf("GPIO pin state %u is out of range (0-1)", value);
    const uint32_t bit = 1u << pin;
    if ((direction_ & bit) != 0)
        return Status::Errorf("GPIO pin %u is an input and cannot be written", pin);
    if ((writePermission_ & bit) == 0)
        return Status::Errorf("GPIO pin %u is read-only (no write permission)", pin);
    outputLatch_ = value != 0 ? outputLatch_ | bit : outputLatch_ & ~bit;
    return Status::Ok();
}

}  // namespace q7sim
