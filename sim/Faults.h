// Faults that tests inject into the simulated device. The shipped program
// never sets any; with an empty plan the device behaves as a healthy one.
#ifndef Q7SIM_FAULTS_H
#define Q7SIM_FAULTS_H

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace q7sim {

// One value argument of a call, as the call log keeps it: every integer and
// double argument converts exactly.
struct CallArgument {
    CallArgument(uint32_t value) : value(value) {}
    CallArgument(int32_t value) : value(value) {}
    CallArgument(double value) : value(value) {}
    double value;
};
// A call's value arguments in order: the handle, out-pointers and buffers
// left out.
using CallArguments = std::initializer_list<CallArgument>;

// A fault in the data of one DSD read or write that otherwise succeeds.
struct DataFault {
    enum class Kind {
        FlipBit,      // the read hands back `mask` flipped in byte `byteIndex` (modulo the bytes read)
        ShortRead,    // the read delivers only its first `byteIndex` bytes and reports at most that many
        IgnoreWrite,  // the write reports success and its full count but changes nothing
        StopWrite,    // the write stops after `byteIndex` changed bytes and reports at most that many
        FailWrite,    // the write stops after `byteIndex` changed bytes and then fails
        ForgeKey,     // a key request answers a nonzero key the device never issued
    };
    Kind kind;
    uint32_t byteIndex;
    uint8_t mask;

    // Applies a read fault to the `count` bytes read into `data`, which held
    // `before` until the read; returns the count of bytes the read reports.
    uint32_t ApplyToRead(const std::vector<uint8_t> &before, uint8_t *data, uint32_t count) const;
    // Applies a write fault to memory that held `before` until the write;
    // returns the count of bytes written that the write reports.
    uint32_t ApplyToWrite(const std::vector<uint8_t> &before, uint8_t *memory, uint32_t written) const;
};

class FaultPlan {
public:
    // The calls of `operation` (its Q7_ name) from the `nthCall`-th on (1 =
    // the next) fail with `text`, `count` of them; the calls before succeed.
    void FailCalls(const std::string &operation, unsigned nthCall, unsigned count, const std::string &text);
    void FailNext(const std::string &operation, unsigned count, const std::string &text)
    {
        FailCalls(operation, 1, count, text);
    }
    // Q7_ConnectDevice answers only at this attempt (counted from interface
    // open) and later; 0 means never.
    void ConnectSucceedsAtAttempt(unsigned attempt) { connectAttempt_ = attempt; }
    // The `nthCall`-th call of the read or write `operation` that reaches the
    // connected device suffers `fault`.
    void PlanDataFault(const std::string &operation, unsigned nthCall, DataFault fault);

    // Every operation that may fail passes here once per call: consumes one
    // planned failure of `operation`, if any, and logs the call and its
    // arguments when asked to.
    std::optional<std::string> TakeFailure(const std::string &operation, CallArguments arguments = {});
    // While on, every call is logged by its Q7_ name, in order.
    void RecordCalls(bool on) { recordCalls_ = on; }
    const std::vector<std::string> &Calls() const { return calls_; }
    // The arguments of each call in Calls(), at the same index.
    const std::vector<std::vector<double>> &ArgumentsOfCalls() const { return callArguments_; }
    bool ConnectAnswers(unsigned attempt) const { return connectAttempt_ != 0 && attempt >= connectAttempt_; }
    // Counts one call of the read or write `operation` that reached the
    // device; the data fault planned for it, if any.
    std::optional<DataFault> TakeDataFault(const std::string &operation);

    // ---- Read-back faults: settings that do not read back as written ----
    // The next `count` calls of `operation` answer success and change nothing.
    void IgnoreNext(const std::string &operation, unsigned count);
    // Called with the Q7_ name of every call that FailNext can fail, before
    // the call acts: a test's hook into the moment of a call.
    void OnEveryCall(std::function<void(const std::string &operation)> hook) { onCall_ = std::move(hook); }

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
        unsigned callsBefore = 0;
        unsigned remaining = 0;
        std::string text;
    };
    struct PlannedDataFault {
        unsigned callsBefore = 0;
        DataFault fault;
    };
    std::map<std::string, PlannedFailure> failures_;
    std::multimap<std::string, PlannedDataFault> dataFaults_;
    unsigned connectAttempt_ = 1;

    // Read-back faults.
    struct ReadBackFaults {
        std::map<std::string, unsigned> ignores;
        std::map<std::pair<std::string, unsigned>, double> skews;
        uint32_t stuckMask = 0;
        uint32_t stuckLevels = 0;
    };
    ReadBackFaults readBack_;
    std::function<void(const std::string &operation)> onCall_;
    bool recordCalls_ = false;
    std::vector<std::string> calls_;
    std::vector<std::vector<double>> callArguments_;
};

// The one plan of this process; it outlives interfaces so that a test can
// arm it before the program opens the interface.
FaultPlan &Faults();

}  // namespace q7sim

#endif
