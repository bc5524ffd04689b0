#include "meshrake/observation_compare/shape_functions.hpp"

#include <cmath>

namespace observation_compare {

int localCoordinates(const box_tree::Box& box, const box_tree::Point& point, LocalPoint& rst) {
    std::size_t n = 0;
    for (std::size_t a = 0; a < 3; ++a) {
        const double span = box.high[a] - box.low[a];
        if (span == 0) continue;
        const double coordinate = (2 * point[a] - box.high[a] - box.low[a]) / span;
        rst[n++] = std::isnan(coordinate) ? 0 : coordinate;
    }
    return static_cast<int>(n);
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
