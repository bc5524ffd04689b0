#include "tecio/value_range.hpp"

#include <algorithm>
#include <array>

namespace tecio {

namespace {

// With independent lanes the compiler compares several values in one instruction. With as many as
// 32 lanes it does not unroll the inner loop instead. A comparison with NaN is false and changes
// nothing. The sum with 0.0 makes a zero positive.
template<class T>
Range range(const T* values, std::int64_t count) {
    constexpr std::int64_t lanes = 32;
    std::array<T, lanes> least, greatest;
    least.fill(emptyLeast<T>);
    greatest.fill(emptyGreatest<T>);
    const auto take = [&](std::size_t lane, T value) {
        least[lane] = value < least[lane] ? value : least[lane];
        greatest[lane] = value > greatest[lane] ? value : greatest[lane];
    };
    std::int64_t i = 0;
    for (; i + lanes <= count; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            take(lane, values[i + static_cast<std::int64_t>(lane)]);
    for (; i < count; ++i) take(0, values[i]);
    return {static_cast<double>(*std::min_element(least.begin(), least.end())) + 0.0,
            static_cast<double>(*std::max_element(greatest.begin(), greatest.end())) + 0.0};
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

void extend(Range& range, const Range& by) {
    range.least = std::min(range.least, by.least);
    range.greatest = std::max(range.greatest, by.greatest);
}

} // namespace tecio
