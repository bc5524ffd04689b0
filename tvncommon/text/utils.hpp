#pragma once

#include <cstdint>
#include <string>

namespace utils {

// Returns the number of decimal digits, and 1 for all negative values.
int numDigits(std::int32_t value);

// Returns the decimal text with leading zeros to `width` digits, or `width` stars if it does not
// fit. A width that `toString_i4` rejects ends the run.
std::string zeroPaddedIntString(std::int32_t value, int width);

// Returns the local date and time with its offset from universal time, such as
// "2024-05-31T17:04:09-04:00". An offset of 0 is written as "Z".
std::string timestampUTC();

} // namespace utils
