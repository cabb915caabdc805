#include "unit_record.h"

#include <cstdio>
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

std::optional<bool> UnitRecord::Simulated() const
{
    const std::string &driver = Identity("driver_version");
    if (driver.empty())
        return std::nullopt;
    return driver.find(TEXT_SIMULATED_DEVICE) != std::string::npos;
}

Totals UnitRecord::Count() const
{
    Totals totals;
    totals.checks = checks.size();
    for (const Check &check : checks) {
        totals.commands += check.isCommand;
        if (!check.passed)
            totals.failed++;
        else if (check.expectedError)
            totals.expectedErrors++;
        else if (check.marginal)
            totals.marginal++;
        else
            totals.passed++;
    }
    return totals;
}

const char *UnitRecord::Verdict() const
{
    if (!error.empty())
        return "ERROR";
    return Passed() ? "PASS" : "FAIL";
}

bool UnitRecord::Passed() const
{
    if (!error.empty() || checks.empty())
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

std::string IsoTime(long long milliseconds)
{
    std::time_t time = static_cast<std::time_t>(milliseconds >= 0 ? milliseconds / 1000 : (milliseconds - 999) / 1000);
    std::tm utc{};
    gmtime_r(&time, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    return text;
}

std::string UtcTime(long long milliseconds)
{
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%03lldZ", ((milliseconds % 1000) + 1000) % 1000);
    return IsoTime(milliseconds) + fraction;
}

}  // namespace q7report
