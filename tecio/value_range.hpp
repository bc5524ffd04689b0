#pragma once

#include <cstdint>

#include "tecio/data_file.hpp"

namespace tecio {

// Least and greatest of the values; NaN is left out.
Range rangeOf(const float* values, std::int64_t count);
Range rangeOf(const double* values, std::int64_t count);
Range rangeOf(const std::int32_t* values, std::int64_t count);

} // namespace tecio
