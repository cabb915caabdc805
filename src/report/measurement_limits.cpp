#include "measurement_limits.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "run_plan.h"

namespace q7report {
namespace {

const RunQuantity *PlannedQuantity(const std::string &name)
{
    for (const RunQuantity &quantity : kRunQuantities)
        if (name == quantity.name)
            return &quantity;
    return nullptr;
}

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string WithUnit(double value, const std::string &unit) { return Number(value) + (unit.empty() ? "" : " " + unit); }

std::string Range(double low, double high, const std::string &unit)
{
    return Number(low) + " to " + WithUnit(high, unit);
}

// The members an entry may have; anything else is a typo that would
// otherwise be read as nothing.
const char *const kEntryMembers[] = {"low", "high", "marginal_low", "marginal_high", "unit", "why"};

bool ReadEntry(const std::string &quantity, const nlohmann::json &entry, const RunQuantity &planned, Limit &limit,
               std::string &error)
{
    const std::string name = "\"" + quantity + "\"";
    if (!entry.is_object()) {
        error = name + " is not an object";
        return false;
    }
    for (const auto &[member, value] : entry.items()) {
        bool known = false;
        for (const char *kMember : kEntryMembers)
            known = known || member == kMember;
        if (!known) {
            error = name + " has a member \"" + member + "\" that limits do not have";
            return false;
        }
    }
    for (const char *member : {"low", "high"})
        if (!entry.contains(member) || !entry[member].is_number()) {
            error = name + " needs a number \"" + member + "\"";
            return false;
        }
    if (!entry.contains("unit") || !entry["unit"].is_string()) {
        error = name + " needs its \"unit\"";
        return false;
    }
    limit.unit = entry["unit"].get<std::string>();
    if (limit.unit != planned.unit) {
        error = name + " is measured in \"" + planned.unit + "\", not \"" + limit.unit + "\"";
        return false;
    }
    limit.low = entry["low"].get<double>();
    limit.high = entry["high"].get<double>();
    limit.marginalLow = limit.low;
    limit.marginalHigh = limit.high;
    for (const auto &[member, bound] : {std::pair{"marginal_low", &limit.marginalLow},
                                        std::pair{"marginal_high", &limit.marginalHigh}})
        if (entry.contains(member)) {
            if (!entry[member].is_number()) {
                error = name + ": \"" + member + "\" is not a number";
                return false;
            }
            *bound = entry[member].get<double>();
        }
    if (!std::isfinite(limit.low) || !std::isfinite(limit.high) || !(limit.low <= limit.high)) {
        error = name + " has its low limit above its high one";
        return false;
    }
    if (!(limit.low <= limit.marginalLow && limit.marginalLow <= limit.marginalHigh &&
          limit.marginalHigh <= limit.high)) {
        error = name + "'s marginal band is not inside its limits";
        return false;
    }
    return true;
}

}  // namespace

const Limits &Limits::Default()
{
    static const Limits table = [] {
        Limits limits;
        for (const RunQuantity &quantity : kRunQuantities)
            limits.byQuantity_[quantity.name] =
                Limit{quantity.low, quantity.high, quantity.marginalLow, quantity.marginalHigh, quantity.unit};
        return limits;
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
        const RunQuantity *planned = PlannedQuantity(quantity);
        if (planned == nullptr) {
            error = "\"" + quantity + "\" is no quantity the automated run measures";
            return std::nullopt;
        }
        if (!ReadEntry(quantity, entry, *planned, limits.byQuantity_[quantity], error))
            return std::nullopt;
    }
    for (const RunQuantity &quantity : kRunQuantities)
        if (limits.byQuantity_.count(quantity.name) == 0) {
            error = "no limits for \"" + std::string(quantity.name) + "\"";
            return std::nullopt;
        }
    return limits;
}

const Limit *Limits::Find(const std::string &quantity) const
{
    auto found = byQuantity_.find(quantity);
    return found == byQuantity_.end() ? nullptr : &found->second;
}

std::string Limits::Json() const
{
    nlohmann::ordered_json table = nlohmann::ordered_json::object();
    for (const RunQuantity &quantity : kRunQuantities) {
        const Limit &limit = byQuantity_.at(quantity.name);
        nlohmann::ordered_json entry = {{"low", limit.low}, {"high", limit.high}};
        if (limit.marginalLow != limit.low || limit.marginalHigh != limit.high) {
            entry["marginal_low"] = limit.marginalLow;
            entry["marginal_high"] = limit.marginalHigh;
        }
        entry["unit"] = limit.unit;
        entry["why"] = quantity.why;
        table[quantity.name] = entry;
    }
    nlohmann::ordered_json document = {
        {"limits_version", 1},
        {"about", "The limits q7cal-report judges a unit's measured values by: every quantity the automated run "
                  "measures, its lowest and highest good value (both inclusive) in its unit, and optionally a "
                  "marginal band inside them, outside which a good value is MARGINAL. Copy this file, move the "
                  "limits for a product and give it with --limits; every quantity must stay."},
        {"limits", table}};
    return document.dump(2) + "\n";
}

Check JudgeLimits(Measurement &measurement, const Limit &limit)
{
    Check check;
    check.classname = measurement.classname;
    check.name = measurement.command + ": " + measurement.name;
    check.line = measurement.line;
    measurement.limit = limit;
    auto valueName = [&](size_t i) {
        return measurement.isArray ? measurement.name + "[" + std::to_string(i) + "]" : measurement.name;
    };
    if (measurement.unit != limit.unit) {
        check.message = measurement.name + " is in \"" + measurement.unit + "\", its limits in \"" + limit.unit + "\"";
    } else {
        for (size_t i = 0; i < measurement.values.size() && check.message.empty(); i++) {
            double value = measurement.values[i];
            if (!(value >= limit.low && value <= limit.high))
                check.message = valueName(i) + " = " + WithUnit(value, measurement.unit) + " is outside its limits " +
                                Range(limit.low, limit.high, limit.unit);
        }
    }
    if (!check.message.empty()) {
        check.passed = measurement.withinLimits = false;
        check.type = "outside limits";
        return check;
    }
    for (size_t i = 0; i < measurement.values.size(); i++) {
        double value = measurement.values[i];
        if (value >= limit.marginalLow && value <= limit.marginalHigh)
            continue;
        check.marginal = measurement.marginal = true;
        check.type = "marginal";
        check.message = valueName(i) + " = " + WithUnit(value, measurement.unit) + " is inside its limits " +
                        Range(limit.low, limit.high, limit.unit) + " but outside its marginal band " +
                        Range(limit.marginalLow, limit.marginalHigh, limit.unit);
        break;
    }
    return check;
}

}  // namespace q7report
