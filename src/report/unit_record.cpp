#include "unit_record.h"

#include <cstring>

namespace q7report {

const std::string &UnitRecord::Identity(const char *key) const
{
    static const std::string kNone;
    for (size_t i = 0; i < kIdentityFieldCount; i++)
        if (std::strcmp(kIdentityFields[i].key, key) == 0)
            return identity[i];
    return kNone;
}

bool UnitRecord::Simulated() const
{
    return Identity("driver_version").find(TEXT_SIMULATED_DEVICE) != std::string::npos;
}

Totals UnitRecord::Count() const
{
    Totals totals;
    for (const Check &check : checks) {
        if (check.isCommand) {
            totals.commands++;
            totals.commandsPassed += check.passed;
        } else if (check.expectedError && check.passed) {
            totals.expectedErrors++;
        } else {
            totals.checks++;
            totals.checksPassed += check.passed;
        }
    }
    return totals;
}

bool UnitRecord::Passed() const
{
    if (checks.empty())
        return false;
    for (const Check &check : checks)
        if (!check.passed)
            return false;
    return true;
}

std::string UnitName(const UnitRecord &record, const RunContext &context)
{
    if (!context.unit.empty())
        return context.unit;
    const std::string &mac = record.Identity("mac_address");
    return mac.empty() ? "unknown" : mac;
}

std::string IsoTime(std::time_t time)
{
    std::tm utc{};
    gmtime_r(&time, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    return text;
}

}  // namespace q7report
