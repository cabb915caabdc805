// Faults that tests inject into the simulated device. The shipped program
// never sets any; with an empty plan the device behaves as a healthy one.
#ifndef Q7SIM_FAULTS_H
#define Q7SIM_FAULTS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace q7sim {

class FaultPlan {
public:
    // The next `count` calls of `operation` (its Q7_ name) fail with `text`.
    void FailNext(const std::string &operation, unsigned count, const std::string &text);
    // Q7_ConnectDevice answers only at this attempt (counted from interface
    // open) and later; 0 means never.
    void ConnectSucceedsAtAttempt(unsigned attempt) { connectAttempt_ = attempt; }

    // Consumes one planned failure of `operation`, if any.
    std::optional<std::string> TakeFailure(const std::string &operation);
    bool ConnectAnswers(unsigned attempt) const { return connectAttempt_ != 0 && attempt >= connectAttempt_; }

    // ---- Read-back faults: settings that do not read back as written ----
    // The next `count` calls of `operation` answer success and change nothing.
    void IgnoreNext(const std::string &operation, unsigned count);
    // `operation` reports its out-value number `output` (0 = its first
    // out-pointer) with `offset` added, from now on.
    void SkewOutput(const std::string &operation, unsigned output, double offset);
    // GPIO `pin` reads as `level` (0 or 1) whatever drives it.
    void StickGpioPin(unsigned pin, unsigned level);

    // Consumes one planned ignore of `operation`, if any.
    bool TakeIgnore(const std::string &operation);
    double OutputSkew(const std::string &operation, unsigned output) const;
    uint32_t WithStuckPins(uint32_t pinState) const;
    // ---- end of read-back faults ----

    void Clear();

private:
    struct PlannedFailure {
        unsigned remaining = 0;
        std::string text;
    };
    std::map<std::string, PlannedFailure> failures_;
    unsigned connectAttempt_ = 1;

    // Read-back faults.
    struct ReadBackFaults {
        std::map<std::string, unsigned> ignores;
        std::map<std::pair<std::string, unsigned>, double> skews;
        uint32_t stuckMask = 0;
        uint32_t stuckLevels = 0;
    };
    ReadBackFaults readBack_;
};

// The one plan of this process; it outlives interfaces so that a test can
// arm it before the program opens the interface.
FaultPlan &Faults();

}  // namespace q7sim

#endif
