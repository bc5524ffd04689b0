#pragma once

#include <cstdint>

#include "tecio/checksum.hpp"
#include "tecio/value_range.hpp"

namespace tecio {

// Updates the range and, if given, the checksum by values of this type (as for `rangeOf`), in one
// pass with 32-byte registers. It processes the first values, as many as fill whole blocks of the
// checksum, and returns their number. Returns 0 if the processor has no such registers, or if the
// checksum is not at the beginning of a block.
std::int64_t summarizeWide(std::int32_t type, const void* values, std::int64_t count, Range& range,
                           Checksum* checksum);

} // namespace tecio
