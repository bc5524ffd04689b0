#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Unit systems, and the text of a dimension expression such as "M * L^-3" in a unit system.
namespace units {

// The length and time units of a problem. Mass is in kilograms in all systems.
struct UnitSystem {
    std::int32_t handle = 0; // 0 to 9, as the simulator numbers them
};

// Stores the handle. An unknown handle ends the run with an input error, which names the file that
// had the handle, unless `filename` is empty.
void init(UnitSystem& unitSystem, std::int32_t handle, const std::string& filename = {});
std::int32_t handle(const UnitSystem& unitSystem);

// Returns a name such as "kilogram-meter-second". An unknown handle ends the run with an input
// error.
std::string toString(const UnitSystem& unitSystem);

bool equalsComp(const UnitSystem& a, const UnitSystem& b);
bool notEqualsComp(const UnitSystem& a, const UnitSystem& b);

// Restores the state of a program start: texts of handle 0, temperatures in K.
void reset();

// Sets the unit system whose length and time texts are used. An unknown handle ends the run.
void setBaseUnits(std::int32_t handle);

// Set the text of the temperature unit to "K" or "deg C".
void setTempUnitsToK();
void setTempUnitsToC();

// Returns the unit of a dimension letter M, L, T, K or N, in upper or lower case. Returns any other
// name itself, and of a letter after a backslash the letter.
std::string getDerivedUnit(std::string_view name);

// Returns the text of a product of factors, in parentheses: "M * L^-3" gives "(kg m^-3)". A factor
// is a name, or a name, "^" and an exponent. Factors with exponent 0 are omitted. "1" and a product
// without factors give "(-)", a blank expression gives an empty text. An exponent that does not
// begin with a number ends the run.
std::string parseUnits(std::string_view expression);

// Appends the text of one factor to `result`, after a blank.
void parseUnitsAppend(std::string& result, std::string_view token);

} // namespace units
