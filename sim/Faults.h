// Faults that tests inject into the simulated device. The shipped program
// never sets any; with an empty plan the device behaves as a healthy one.
#ifndef Q7SIM_FAULTS_H
#define Q7SIM_FAULTS_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace q7sim {

class FaultPlan {
public:
    // After `skip` more calls of `operation` (its Q7_ name) that go through,
    // the next `count` calls fail with `text`.
    void FailNext(const std::string &operation, unsigned count, const std::string &text, unsigned skip = 0);
    // Q7_ConnectDevice answers only at this attempt (counted from interface
    // open) and later; 0 means never.
    void ConnectSucceedsAtAttempt(unsigned attempt) { connectAttempt_ = attempt; }

    // Every operation that may fail passes here once per call: consumes one
    // planned failure of `operation`, if any, and logs the call when asked to.
    std::optional<std::string> TakeFailure(const std::string &operation);
    // While on, every call is logged by its Q7_ name, in order.
    void RecordCalls(bool on) { recordCalls_ = on; }
    const std::vector<std::string> &Calls() const { return calls_; }
    bool ConnectAnswers(unsigned attempt) const { return connectAttempt_ != 0 && attempt >= connectAttempt_; }

    void Clear();

private:
    struct PlannedFailure {
        unsigned skip = 0;
        unsigned remaining = 0;
        std::string text;
    };
    std::map<std::string, PlannedFailure> failures_;
    unsigned connectAttempt_ = 1;
    bool recordCalls_ = false;
    std::vector<std::string> calls_;
};

// The one plan of this process; it outlives interfaces so that a test can
// arm it before the program opens the interface.
FaultPlan &Faults();

}  // namespace q7sim

#endif
