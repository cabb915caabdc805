// Faults that tests inject into the simulated device. The shipped program
// never sets any; with an empty plan the device behaves as a healthy one.
#ifndef Q7SIM_FAULTS_H
#define Q7SIM_FAULTS_H

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

    void Clear();

private:
    struct PlannedFailure {
        unsigned remaining = 0;
        std::string text;
    };
    std::map<std::string, PlannedFailure> failures_;
    unsigned connectAttempt_ = 1;
};

// The one plan of this process; it outlives interfaces so that a test can
// arm it before the program opens the interface.
FaultPlan &Faults();

}  // namespace q7sim

#endif
