#pragma once

#include <cstdint>
#include <string>

namespace utils {

// Number of decimal digits; 1 for anything not over 9, negative values included.
int numDigits(std::int32_t value);

// Decimal text with leading zeros up to `width` digits; a row of stars when it takes more than
// that. A width that no number can be written in ends the run.
std::string zeroPaddedIntString(std::int32_t value, int width);

// The local date and time with its offset, "2024-05-31T17:04:09-04:00"; "Z" for an offset of 0.
std::string timestampUTC();

} // namespace utils
