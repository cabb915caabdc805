// The 32 GPIO pins: direction fixed by the board, write permission set by the
// host, and the pin levels (inputs driven by the board, outputs by writes).
#ifndef Q7SIM_GPIO_H
#define Q7SIM_GPIO_H

#include <cstdint>

#include "Status.h"

namespace q7sim {

class Gpio {
public:
    static constexpr uint32_t kPins = 32;
    // The three LED pins 10 to 12 are outputs.
    static constexpr uint32_t kLedPins = 0x00001C00;
    // Direction, 1 = input: pins 0-7 and 16-31 are inputs, 8-15 outputs.
    static constexpr uint32_t kBoardDirection = 0xFFFF00FF;
    // What the board drives onto the input pins.
    static constexpr uint32_t kBoardInputLevels = 0x80F300A5;
    // Factory write permission: every output pin is read-write.
    static constexpr uint32_t kFactoryWritePermission = ~kBoardDirection;

    uint32_t state() const { return (inputLevels_ & direction_) | (outputLatch_ & ~direction_); }
    uint32_t direction() const { return direction_; }
    uint32_t writePermission() const { return writePermission_; }

    // Any mask is taken; only the write permission is configurable.
    void SetWritePermission(uint32_t mask) { writePermission_ = mask; }
    Status SetPinState(uint32_t pin, uint32_t value);

    // Test hooks: a board wired differently (e.g. an LED pin used as input).
    void ForceDirection(uint32_t mask) { direction_ = mask; }
    void ForceInputLevels(uint32_t levels) { inputLevels_ = levels; }

private:
    uint32_t direction_ = kBoardDirection;
    uint32_t inputLevels_ = kBoardInputLevels;
    uint32_t outputLatch_ = 0;
    uint32_t writePermission_ = kFactoryWritePermission;
};

}  // namespace q7sim

#endif
