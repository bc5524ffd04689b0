#pragma once

#include "tvncommon/search/KDTree.hpp"

#include <algorithm>

// Geometry of the boxes of a tree. NaN is in no box. A box with a bound of NaN intersects every box
// and is contained in none.
namespace KDTree {

// Returns the dimension in which the box is widest, the first among equals. For a box without
// extent the dimension changes with the depth.
template<std::size_t D>
std::int32_t splitOnWidest(const Box<D>& box, std::int32_t depth) {
    std::int32_t widest = 0;
    double extent = 0;
    for (std::size_t d = 0; d < D; ++d) {
        if (!(box.upper[d] - box.lower[d] > extent)) continue;
        extent = box.upper[d] - box.lower[d];
        widest = static_cast<std::int32_t>(d) + 1;
    }
    return widest > 0 ? widest : depth % static_cast<std::int32_t>(D) + 1;
}

// Returns the square of the distance from a point to a box. It is computed as that to a point is,
// so that with the same rounding no point in the box is nearer.
template<std::size_t D>
double boxDist2(const Box<D>& box, const Point<D>& at) {
    double sum = 0;
    for (std::size_t d = 0; d < D; ++d) {
        const double gap = std::max({0.0, box.lower[d] - at[d], at[d] - box.upper[d]});
        sum += gap * gap;
    }
    return sum;
}

template<std::size_t D>
bool containsBoundingBox(const Box<D>& outer, const Box<D>& inner) {
    for (std::size_t d = 0; d < D; ++d)
        if (!(outer.lower[d] <= inner.lower[d] && inner.upper[d] <= outer.upper[d])) return false;
    return true;
}

template<std::size_t D>
bool intersectsBoundingBox(const Box<D>& a, const Box<D>& b) {
    for (std::size_t d = 0; d < D; ++d)
        if (a.upper[d] < b.lower[d] || b.upper[d] < a.lower[d]) return false;
    return true;
}

template<std::size_t D>
bool pointInBoundingBox(const Box<D>& box, const Point<D>& at) {
    return containsBoundingBox(box, Box<D>{at, at});
}

} // namespace KDTree
