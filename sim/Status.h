// The outcome of one simulated device operation: success, or an error text.
#ifndef Q7SIM_STATUS_H
#define Q7SIM_STATUS_H

#include <string>
#include <utility>

namespace q7sim {

class Status {
public:
    static Status Ok() { return Status(); }
    static Status Error(std::string text) { return Status(std::move(text)); }
    // printf-style error text: Status::Errorf("DUT mode %u is out of range (0-5)", mode)
    static Status Errorf(const char *format, ...) __attribute__((format(printf, 1, 2)));

    bool ok() const { return !failed_; }
    const std::string &text() const { return text_; }

private:
    Status() = default;
    explicit Status(std::string text) : failed_(true), text_(std::move(text)) {}

    bool failed_ = false;
    std::string text_;
};

}  // namespace q7sim

#endif
