#pragma once

#include <cstdint>

#include "tecio/data_file.hpp"

namespace tecio {

// Returns the least and greatest value of an array of this type: 1 float, 2 double, 3 int32_t. NaN
// is ignored.
Range rangeOf(std::int32_t type, const void* values, std::int64_t count);

} // namespace tecio
