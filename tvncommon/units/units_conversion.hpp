#pragma once

#include "tvncommon/units/units.hpp"

#include <cstdint>

// Conversion of values between unit systems, and unit systems in files.
namespace units {

// Exponents of the dimensions of a quantity.
struct SIUnits {
    double mass = 0, length = 0, time = 0, temperature = 0, amount = 0;
};

// Return the dimensions of a product, a quotient and a power.
SIUnits multiply(const SIUnits& a, const SIUnits& b);
SIUnits divide(const SIUnits& a, const SIUnits& b);
SIUnits power_int(const SIUnits& a, std::int32_t exponent);
SIUnits power_real(const SIUnits& a, float exponent);
SIUnits power_real_dr(const SIUnits& a, double exponent);

// Returns the factor that converts a value in SI units to this system, or 1 for an unknown system.
double conversionFactor(const UnitSystem& unitSystem, const SIUnits& exponents);

// Converts a value in SI units to this system. In system 0 the value is not changed.
void convert(const UnitSystem& unitSystem, double& value, const SIUnits& exponents);

// Write the handle to a file unit, and read it: as one record if the unit is open for records, as
// one line if it is open for text. A unit that is not open and an unknown handle end the run.
void serialize(const UnitSystem& unitSystem, int unit);
void deserialize(UnitSystem& unitSystem, int unit);

} // namespace units
