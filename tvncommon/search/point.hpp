#pragma once

#include <array>
#include <cstddef>

namespace search {

// Coordinates of a point in D dimensions, length unit of the mesh.
template<std::size_t D>
using Point = std::array<double, D>;

} // namespace search
