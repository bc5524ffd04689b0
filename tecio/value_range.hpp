#pragma once

#include <cstdint>
#include <limits>

namespace tecio {

// Least and greatest value, NaN excluded. Without any value the least is above the greatest. A zero
// is positive, so that the result does not depend on the order of the comparisons.
struct Range {
    double least, greatest;
};

// Least and greatest value of an empty range: the first comparison with a value replaces both.
template<class T>
inline constexpr T emptyLeast = std::numeric_limits<T>::has_infinity
                                    ? std::numeric_limits<T>::infinity()
                                    : std::numeric_limits<T>::max();
template<class T>
inline constexpr T emptyGreatest = std::numeric_limits<T>::has_infinity
                                       ? -std::numeric_limits<T>::infinity()
                                       : std::numeric_limits<T>::lowest();

// Returns the range of an array of this type: 1 float, 2 double, 3 int32_t.
Range rangeOf(std::int32_t type, const void* values, std::int64_t count);

// Extends a range so that it contains `by`.
void extend(Range& range, const Range& by);

} // namespace tecio
