#include "tvncommon/units/units_conversion.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"
#include "tvncommon/units/units_systems.hpp"

#include <array>
#include <cmath>
#include <string>

namespace units {

SIUnits multiply(const SIUnits& a, const SIUnits& b) {
    return {a.mass + b.mass, a.length + b.length, a.time + b.time, a.temperature + b.temperature,
            a.amount + b.amount};
}

SIUnits divide(const SIUnits& a, const SIUnits& b) {
    return multiply(a, power_int(b, -1));
}

SIUnits power_int(const SIUnits& a, std::int32_t exponent) {
    return power_real_dr(a, exponent);
}

SIUnits power_real(const SIUnits& a, float exponent) {
    return power_real_dr(a, static_cast<double>(exponent));
}

SIUnits power_real_dr(const SIUnits& a, double exponent) {
    return {a.mass * exponent, a.length * exponent, a.time * exponent, a.temperature * exponent,
            a.amount * exponent};
}

double conversionFactor(const UnitSystem& unitSystem, const SIUnits& exponents) {
    const auto system = static_cast<std::size_t>(unitSystem.handle);
    if (system >= systems.size()) return 1;
    return std::pow(systems[system].lengthUnitsPerMetre, exponents.length) *
           std::pow(systems[system].secondsPerTimeUnit, -exponents.time);
}

void convert(const UnitSystem& unitSystem, double& value, const SIUnits& exponents) {
    if (unitSystem.handle != 0) value *= conversionFactor(unitSystem, exponents);
}

void serialize(const UnitSystem& unitSystem, int unit) {
    switch (io_layer::formOf(unit)) {
    case io_layer::Form::unformatted:
        error::checkFileWrite(
            io_layer::writeRecord(unit, &unitSystem.handle, sizeof unitSystem.handle),
            io_layer::pathOf(unit));
        return;
    case io_layer::Form::formatted:
        return file_units::writeLine(unit, " " + std::to_string(unitSystem.handle));
    case io_layer::Form::unconnected:
        error::fatalError("UnitSystem: serialize failed: unassociated file unit");
    }
}

void deserialize(UnitSystem& unitSystem, int unit) {
    std::int32_t read = 0;
    switch (io_layer::formOf(unit)) {
    case io_layer::Form::unformatted:
        read = file_units::readInteger(unit);
        break;
    case io_layer::Form::formatted: {
        const std::array<free_form::Item, 1> item{&read};
        const auto line = [unit](std::string& text) { return file_units::readLine(unit, text); };
        error::checkFileRead(free_form::readItems(line, item, free_form::MissingValue::refused),
                             io_layer::pathOf(unit));
        break;
    }
    case io_layer::Form::unconnected:
        error::fatalError("UnitSystem: deserialize failed: unassociated file unit");
    }
    init(unitSystem, read, io_layer::pathOf(unit));
}

} // namespace units
