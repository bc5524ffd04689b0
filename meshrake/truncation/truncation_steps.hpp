#pragma once

#include "meshrake/model/domain.hpp"

// Steps that the truncations of both coupling schemes share.
namespace truncation {

// Returns the number of elements in each layer of a mesh with `elementCount` elements. If it is 0
// and `domain` is truncated by layer, the run ends.
std::int32_t layerSize(const model::Domain& domain, std::int32_t elementCount);

// Returns whether the requested truncation includes an element, counted from 0. The centroid of the
// element's pm nodes must be in the x and y ranges and, if "truncate <tag> domain" is requested, in
// the z range. Otherwise the element's layer must be in the range of layers; each layer has
// `layerElements` elements. All ranges include their bounds. An element without nodes is outside.
bool isInsideTruncation(const model::Domain& domain, const model::Domain& pm, std::size_t element,
                        std::int32_t layerElements);

std::int32_t countIncluded(const std::vector<std::uint8_t>& included);

// Reports the size of the output mesh on screen and echo file.
void reportTruncation(const model::Domain& domain, bool wholeMesh);

} // namespace truncation
