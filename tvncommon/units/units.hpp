#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Unit systems, and the texts that a dimension expression such as "M * L^-3" becomes in one.
namespace units {

// The length and time units of a problem. Mass is in kilograms in all systems.
struct UnitSystem {
    std::int32_t handle = 0; // 0 to 9, as the simulator numbers them
};

// Stores the handle. An unknown one ends the run as an input error, which names the file that the
// handle comes from, unless `filename` is empty.
void init(UnitSystem& unitSystem, std::int32_t handle, const std::string& filename = {});
std::int32_t handle(const UnitSystem& unitSystem);

// Such as "kilogram-meter-second"; an unknown handle ends the run as an input error.
std::string toString(const UnitSystem& unitSystem);

bool equalsComp(const UnitSystem& a, const UnitSystem& b);
bool notEqualsComp(const UnitSystem& a, const UnitSystem& b);

// The texts start as those of handle 0 with temperatures in K; `reset` puts that back.
void reset();

// Length and time texts from here on are those of this system; a handle that is none ends the run.
void setBaseUnits(std::int32_t handle);

// Text of the temperature unit from here on: "K" or "deg C".
void setTempUnitsToK();
void setTempUnitsToC();

// Text of a dimension letter M, L, T, K or N in either case; of one behind a backslash the letter
// itself; any other name is its own text.
std::string getDerivedUnit(std::string_view name);

// Text in parentheses of a product of factors joined by "*", each a name with or without "^" and an
// exponent: "M * L^-3" gives "(kg m^-3)". Factors with exponent 0 vanish; "(-)" stands for "1" and
// for a product of which nothing is left. A blank expression gives the empty text. An exponent that
// does not begin with a number ends the run.
std::string parseUnits(std::string_view expression);

// Adds to a label in the making what one factor gives, a blank in front.
void parseUnitsAppend(std::string& result, std::string_view token);

} // namespace units
