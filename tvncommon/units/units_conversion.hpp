#pragma once

#include "tvncommon/units/units.hpp"

#include <cstdint>

// Unit systems in files, and values from one system to another.
namespace units {

// Exponents of the dimensions of a quantity.
struct SIUnits {
    double mass = 0, length = 0, time = 0, temperature = 0, amount = 0;
};

// Dimensions of a product, a quotient and a power.
SIUnits multiply(const SIUnits& a, const SIUnits& b);
SIUnits divide(const SIUnits& a, const SIUnits& b);
SIUnits power_int(const SIUnits& a, std::int32_t exponent);
SIUnits power_real(const SIUnits& a, float exponent);
SIUnits power_real_dr(const SIUnits& a, double exponent);

// Factor that turns a value in SI units into one of this system, 1 for an unknown system.
double conversionFactor(const UnitSystem& unitSystem, const SIUnits& exponents);

// Applies it; values stay as they are in system 0.
void convert(const UnitSystem& unitSystem, double& value, const SIUnits& exponents);

// Writes the handle on a unit, or reads it: one record where the unit is open for records, one item
// of text where it is open for text. A unit that is not open and a handle that is no system end the
// run.
void serialize(const UnitSystem& unitSystem, int unit);
void deserialize(UnitSystem& unitSystem, int unit);

} // namespace units
