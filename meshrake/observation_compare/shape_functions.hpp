#pragma once

#include "tvncommon/search/box_tree.hpp"

#include <array>
#include <cstdint>
#include <span>

// The eight-node brick and its local coordinates r, s, t, each from -1 to 1.
namespace observation_compare {

using LocalPoint = std::array<double, 3>;
using Shape = std::array<double, 8>; // the lower face anticlockwise, then the upper face

// Up to this magnitude a local coordinate is inside.
inline constexpr double insideTolerance = 1.00005;

// Local coordinates of a point in an axis-parallel box. A direction in which the box has no extent
// gives none, and those behind it move up by one place; entries past the last keep their values.
// What would be no number is 0. Returns how many entries were set.
int localCoordinates(const box_tree::Box& box, const box_tree::Point& point, LocalPoint& rst);

// The same for an element of type 128 between two corners of its box, in the first `dimensions`
// directions; `outside` tells that an entry is too large. Does nothing for any other type.
void get_rst_from_xyz(std::int32_t elementType, std::int32_t dimensions,
                      std::span<const double> point, std::span<const double> minCorner,
                      std::span<const double> maxCorner, std::span<double> rst, bool& outside);

bool isInside(const LocalPoint& rst);

// Values of the shape functions at the local coordinates that start at `offset` in `rst`.
void br8shp(std::size_t offset, std::span<const double> rst, Shape& shape);

// One factor of a shape function.
double linf(double x);

// Value that the shape functions give to eight nodal values.
double dfe_interp(const Shape& values, const Shape& shape);

} // namespace observation_compare
