#include "tvncommon/units/units.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/units/units_systems.hpp"

#include <cstddef>
#include <limits>

namespace units {

namespace {

struct State {
    std::size_t system = 0;
    std::string_view temperature = "K";
};
State state;

bool isKnown(std::int32_t handle) {
    return handle >= 0 && static_cast<std::size_t>(handle) < systems.size();
}

// Returns the unit of a dimension letter, empty for any other character.
std::string_view baseUnit(char letter) {
    switch (letter) {
    case 'L':
    case 'l':
        return systems[state.system].length;
    case 'M':
    case 'm':
        return "kg";
    case 'T':
    case 't':
        return systems[state.system].time;
    case 'K':
    case 'k':
        return state.temperature;
    case 'N':
    case 'n':
        return "mol";
    default:
        return {};
    }
}

// Returns the text of a factor: empty, the unit, or the unit with its exponent.
std::string factorText(std::string_view factor) {
    const std::size_t hat = factor.find('^');
    std::string symbol = " " + getDerivedUnit(factor.substr(0, hat));
    if (hat == std::string_view::npos || hat + 1 == factor.size()) return symbol;

    const std::string_view exponent = factor.substr(hat + 1);
    // A free-form read of an exponent such as "/2" does not change `power`; its text is then kept.
    float power = std::numeric_limits<float>::quiet_NaN();
    StringHelpers::str2r4(exponent, power);
    if (power == 1.0F) return symbol;
    if (power == 0.0F) return {};
    return symbol.append("^").append(exponent);
}

} // namespace

void init(UnitSystem& unitSystem, std::int32_t handle, const std::string& filename) {
    if (!isKnown(handle))
        error::input_error("UnitSystem: initialization failed: unknown unit system" +
                           (filename.empty() ? "" : "\nFile: " + filename));
    unitSystem.handle = handle;
}

std::int32_t handle(const UnitSystem& unitSystem) {
    return unitSystem.handle;
}

std::string toString(const UnitSystem& unitSystem) {
    if (!isKnown(unitSystem.handle))
        error::input_error("UnitSystem: conversion to string failed: unknown unit system");
    return std::string(systems[static_cast<std::size_t>(unitSystem.handle)].name);
}

bool equalsComp(const UnitSystem& a, const UnitSystem& b) {
    return a.handle == b.handle;
}

bool notEqualsComp(const UnitSystem& a, const UnitSystem& b) {
    return !equalsComp(a, b);
}

void reset() {
    state = {};
}

void setBaseUnits(std::int32_t handle) {
    if (!isKnown(handle)) error::fatalError("setBaseUnits: unknown unit system");
    state.system = static_cast<std::size_t>(handle);
}

void setTempUnitsToK() {
    state.temperature = "K";
}

void setTempUnitsToC() {
    state.temperature = "deg C";
}

std::string getDerivedUnit(std::string_view name) {
    name = StringHelpers::trimRight(name);
    if (name.size() == 1 && !baseUnit(name[0]).empty()) return std::string(baseUnit(name[0]));
    if (name.size() == 2 && name[0] == '\\' && !baseUnit(name[1]).empty()) name.remove_prefix(1);
    return std::string(name);
}

void parseUnitsAppend(std::string& result, std::string_view token) {
    result += factorText(token);
}

std::string parseUnits(std::string_view expression) {
    std::string work = StringHelpers::removeCopy(expression, " \t");
    if (work.empty()) return {};
    if (work == "1") return "(-)";

    std::string label;
    std::string factor;
    while (StringHelpers::chomp(work, "*", true, factor)) parseUnitsAppend(label, factor);
    const std::string_view shown = StringHelpers::trimLeft(StringHelpers::trimRight(label));
    return shown.empty() ? "(-)" : "(" + std::string(shown) + ")";
}

} // namespace units
