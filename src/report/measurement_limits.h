// The limits a unit's measured values are judged by: the automated run's
// plan gives every quantity its unit and default limits (run_plan.h); a
// product's own table, given with --limits, moves them. A table must name
// every quantity of the plan and nothing else, in the plan's units: a
// misspelt or forgotten entry is refused, never a check switched off.
#ifndef Q7REPORT_MEASUREMENT_LIMITS_H
#define Q7REPORT_MEASUREMENT_LIMITS_H

#include <map>
#include <optional>
#include <string>

#include "unit_record.h"

namespace q7report {

class Limits {
public:
    // The plan's own limits.
    static const Limits &Default();
    // A table read from `json`; nothing, with `error` saying what is wrong
    // and where, when it is no limits table for the plan.
    static std::optional<Limits> Parse(const std::string &json, std::string &error);

    // The limits of `quantity`, or null when it has none.
    const Limit *Find(const std::string &quantity) const;

    // The table as a limits file: the plan's quantities in its order, with why
    // the defaults are what they are.
    std::string Json() const;

private:
    std::map<std::string, Limit> byQuantity_;
};

// Judges a measurement by its limits and marginal band, recording the
// outcome in it; the check says which value decided and how.
Check JudgeLimits(Measurement &measurement, const Limit &limit);

}  // namespace q7report

#endif
