#pragma once

#include "meshrake/model/domain.hpp"

// Steps that the truncations of both coupling schemes share.
namespace truncation {

// Number of elements in each layer of a mesh with `elementCount` elements. 0 ends the run if the
// control file requests a truncation by layer.
std::int32_t layerSize(const model::Domain& domain, std::int32_t elementCount);

// Returns whether the requested truncation includes an element, counted from 0. The centroid of its
// pm nodes must lie in the x, y and z ranges or, in a truncation by layer alone, in the x and y
// ranges, and its layer of `layerElements` elements in the range of layers. Bounds are inside; an
// element without nodes is outside.
bool isInsideTruncation(const model::Domain& domain, const model::Domain& pm, std::size_t element,
                        std::int32_t layerElements);

std::int32_t countIncluded(const std::vector<std::uint8_t>& included);

// Reports the size of the output mesh on screen and echo file.
void reportTruncation(const model::Domain& domain, bool wholeMesh);

} // namespace truncation
