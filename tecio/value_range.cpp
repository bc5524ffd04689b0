#include "tecio/value_range.hpp"

#include <algorithm>
#include <array>
#include <limits>

namespace tecio {

namespace {

// With independent lanes the compiler compares several values in one instruction; 32 are too many
// for it to unroll the inner loop instead. A comparison with NaN is false and changes nothing.
template<class T>
Range range(const T* values, std::int64_t count) {
    using Limits = std::numeric_limits<T>;
    constexpr std::int64_t lanes = 32;
    constexpr T above = Limits::has_infinity ? Limits::infinity() : Limits::max();
    constexpr T below = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    std::array<T, lanes> least, greatest;
    least.fill(above);
    greatest.fill(below);
    const auto take = [&](std::size_t lane, T value) {
        least[lane] = value < least[lane] ? value : least[lane];
        greatest[lane] = value > greatest[lane] ? value : greatest[lane];
    };
    std::int64_t i = 0;
    for (; i + lanes <= count; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            take(lane, values[i + static_cast<std::int64_t>(lane)]);
    for (; i < count; ++i) take(0, values[i]);
    return {static_cast<double>(*std::min_element(least.begin(), least.end())),
            static_cast<double>(*std::max_element(greatest.begin(), greatest.end()))};
}

} // namespace

Range rangeOf(std::int32_t type, const void* values, std::int64_t count) {
    switch (type) {
    case 1:
        return range(static_cast<const float*>(values), count);
    case 2:
        return range(static_cast<const double*>(values), count);
    default:
        return range(static_cast<const std::int32_t*>(values), count);
    }
}

} // namespace tecio
