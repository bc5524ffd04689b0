#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <cstddef>

namespace model {

inline constexpr std::size_t maximumCellSlots = 8;

// Node slots of an element, from 0, in the order in which a plot file lists them. Triangles and
// prisms are written as quadrilaterals and bricks that repeat nodes.
struct CellPattern {
    std::int32_t nodesPerElement = 0;
    int length = 0; // nodes of an element in the plot file
    std::array<std::size_t, maximumCellSlots> slots{};
};

// Returns the pattern of elements with this number of slots. Its length is 0 if no shape has that
// number.
const CellPattern& cellPattern(std::int32_t nodesPerElement);

// True for a four-node element whose fourth node is 0. It uses the three-node pattern.
bool isTriangle(const Domain& domain, const std::int32_t* slots);

} // namespace model
