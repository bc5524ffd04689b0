#include "meshrake/observation_compare/shape_functions.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace observation_compare {

namespace {

// Maps low to -1 and high to 1, which must differ.
double scaled(double value, double low, double high) {
    const double coordinate = (2 * value - high - low) / (high - low);
    return std::isnan(coordinate) ? 0 : coordinate;
}

} // namespace

int localCoordinates(const box_tree::Box& box, const box_tree::Point& point, LocalPoint& rst) {
    std::size_t n = 0;
    for (std::size_t a = 0; a < 3; ++a) {
        if (box.high[a] - box.low[a] != 0) rst[n++] = scaled(point[a], box.low[a], box.high[a]);
    }
    return static_cast<int>(n);
}

void get_rst_from_xyz(std::int32_t elementType, std::int32_t dimensions,
                      std::span<const double> point, std::span<const double> minCorner,
                      std::span<const double> maxCorner, std::span<double> rst, bool& outside) {
    constexpr std::int32_t brick = 128;
    outside = false;
    if (elementType != brick) return;
    const auto count = static_cast<std::size_t>(std::max(dimensions, 0));
    std::size_t n = 0;
    for (std::size_t a = 0; a < count; ++a)
        if (maxCorner[a] - minCorner[a] != 0)
            rst[n++] = scaled(point[a], minCorner[a], maxCorner[a]);
    outside = std::ranges::any_of(rst.first(count),
                                  [](double r) { return std::abs(r) > insideTolerance; });
}

bool isInside(const LocalPoint& rst) {
    return std::abs(rst[0]) <= insideTolerance && std::abs(rst[1]) <= insideTolerance &&
           std::abs(rst[2]) <= insideTolerance;
}

void br8shp(std::size_t offset, std::span<const double> rst, Shape& shape) {
    const double r = rst[offset];
    const double s = rst[offset + 1];
    const double t = rst[offset + 2];
    const double a = 1 - r;
    const double b = 1 + r;
    const double c = 1 - s;
    const double d = 1 + s;
    const double e = (1 - t) / 8;
    const double f = (1 + t) / 8;
    shape = {a * c * e, b * c * e, b * d * e, a * d * e,
             a * c * f, b * c * f, b * d * f, a * d * f};
}

double linf(double x) {
    return (1 + x) * 0.5;
}

double dfe_interp(const Shape& values, const Shape& shape) {
    double sum = 0;
    for (std::size_t k = 0; k < shape.size(); ++k) sum += values[k] * shape[k];
    return sum;
}

} // namespace observation_compare
