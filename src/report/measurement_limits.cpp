#include "measurement_limits.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

namespace q7report {

// limits.json as it stands in the source tree, built in by CMake.
extern const char kDefaultLimitsJson[];

const Limits &Limits::Default()
{
    static const Limits table = [] {
        std::string error;
        std::optional<Limits> parsed = Parse(kDefaultLimitsJson, error);
        if (!parsed)
            std::abort();  // the build's own table is checked by the tests
        return *parsed;
    }();
    return table;
}

std::optional<Limits> Limits::Parse(const std::string &json, std::string &error)
{
    nlohmann::json document = nlohmann::json::parse(json, nullptr, false);
    if (document.is_discarded()) {
        error = "not JSON";
        return std::nullopt;
    }
    if (!document.is_object() || !document.contains("limits") || !document["limits"].is_object()) {
        error = "no \"limits\" object";
        return std::nullopt;
    }
    Limits limits;
    for (const auto &[quantity, entry] : document["limits"].items()) {
        const bool complete = entry.is_object() && entry.contains("low") && entry["low"].is_number() &&
                              entry.contains("high") && entry["high"].is_number() && entry.contains("unit") &&
                              entry["unit"].is_string();
        if (!complete) {
            error = "\"" + quantity + "\" needs a number \"low\", a number \"high\" and a text \"unit\"";
            return std::nullopt;
        }
        Limit limit{entry["low"].get<double>(), entry["high"].get<double>(), entry["unit"].get<std::string>()};
        if (!(limit.low <= limit.high)) {
            error = "\"" + quantity + "\" has its low limit above its high one";
            return std::nullopt;
        }
        limits.byQuantity_[quantity] = limit;
    }
    return limits;
}

const Limit *Limits::Find(const std::string &quantity) const
{
    auto found = byQuantity_.find(quantity);
    return found == byQuantity_.end() ? nullptr : &found->second;
}

}  // namespace q7report
