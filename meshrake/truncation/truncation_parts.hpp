#pragma once

#include "meshrake/model/domain.hpp"

// What the truncations of both coupling schemes have in common.
namespace truncation {

struct Point {
    double x = 0, y = 0, z = 0;
};

// Mean of the pm nodes of the element; no number when it has none.
Point centroid(const model::Domain& domain, const model::Domain& pm, std::size_t element);

// Elements in a layer of a mesh of this many elements. One of 0 ends the run if layers are asked
// for.
std::int32_t layerSize(const model::Domain& domain, std::int32_t elementCount);

// The control file's wish: all three ranges, or the ranges in plan and the layers. A centroid that
// is no number is outside.
bool isInsideTruncation(const model::Domain& domain, const Point& centroid, std::size_t element,
                        std::int32_t layerElements);

std::int32_t countIncluded(const std::vector<std::uint8_t>& included);

// Shows the size of the output mesh on screen and echo file.
void reportTruncation(const model::Domain& domain, bool wholeMesh);

} // namespace truncation
