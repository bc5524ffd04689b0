#pragma once

#include "tvncommon/search/box_tree.hpp"

#include <array>
#include <cstdint>
#include <span>

// The eight-node brick and its local coordinates r, s, t, each from -1 to 1.
namespace observation_compare {

using LocalPoint = std::array<double, 3>;
using Shape = std::array<double, 8>; // the lower face anticlockwise, then the upper face

// A local coordinate of at most this magnitude is inside.
inline constexpr double insideTolerance = 1.00005;

// Sets the local coordinates of a point in an axis-parallel box and returns how many it set. A
// direction in which the box has no extent has no entry: the later directions then move up by one.
// The entries after the last one keep their values. A NaN becomes 0.
int localCoordinates(const box_tree::Box& box, const box_tree::Point& point, LocalPoint& rst);

// The same for an element of type 128 (brick) between two corners of its box, in the first
// `dimensions` directions. Sets `outside` to whether one of the first `dimensions` entries is above
// the tolerance. For other types only sets `outside` to false.
void get_rst_from_xyz(std::int32_t elementType, std::int32_t dimensions,
                      std::span<const double> point, std::span<const double> minCorner,
                      std::span<const double> maxCorner, std::span<double> rst, bool& outside);

// True if all coordinates are within the tolerance.
bool isInside(const LocalPoint& rst);

// Sets the values of the eight shape functions at the local coordinates `rst[offset]` and the next
// two. A shape function is the product of (1 +- r) / 2, (1 +- s) / 2 and (1 +- t) / 2.
void br8shp(std::size_t offset, std::span<const double> rst, Shape& shape);

// Returns the factor (1 + x) / 2 of a shape function.
double linf(double x);

// Interpolates eight nodal values: returns the sum of value times shape function.
double dfe_interp(const Shape& values, const Shape& shape);

} // namespace observation_compare
