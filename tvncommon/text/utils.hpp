#pragma once

#include <cstdint>
#include <string>

namespace utils {

// Returns the number of decimal digits; 1 for values up to 9 and for all negative values.
int numDigits(std::int32_t value);

// Returns the decimal text with leading zeros to `width` digits, or `width` stars if it does not
// fit. A width that `toString_i4` rejects ends the run.
std::string zeroPaddedIntString(std::int32_t value, int width);

// Returns the local date and time with its offset from universal time, such as
// "2024-05-31T17:04:09-04:00"; "Z" for an offset of 0.
std::string timestampUTC();

} // namespace utils
