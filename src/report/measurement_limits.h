// The limits a unit's measured values are judged by: a JSON table that ships
// with q7cal-report (limits.json, built into the program), or a product's own
// given with --limits.
#ifndef Q7REPORT_MEASUREMENT_LIMITS_H
#define Q7REPORT_MEASUREMENT_LIMITS_H

#include <map>
#include <optional>
#include <string>

#include "unit_record.h"

namespace q7report {

class Limits {
public:
    // The table that ships with the program.
    static const Limits &Default();
    // A table read from `json`; nothing, with `error` saying what is wrong
    // and where, when it is not a limits table.
    static std::optional<Limits> Parse(const std::string &json, std::string &error);

    // The limits of `quantity`, or null when it has none.
    const Limit *Find(const std::string &quantity) const;

private:
    std::map<std::string, Limit> byQuantity_;
};

}  // namespace q7report

#endif
