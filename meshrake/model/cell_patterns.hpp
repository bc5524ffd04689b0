#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <cstddef>

namespace model {

inline constexpr std::size_t maximumCellSlots = 8;

// Which slots of an element stand in its record in a plot file, from 0. Triangles and prisms are
// quadrilaterals and bricks with corners that fall together.
struct CellPattern {
    std::int32_t nodesPerElement = 0;
    int length = 0;
    std::array<std::size_t, maximumCellSlots> slots{};
};

// That of elements with so many slots; its length is 0 for a number that no shape has.
const CellPattern& cellPattern(std::int32_t nodesPerElement);

// Among elements of four slots, one with a 0 in the last is a triangle: it has the pattern of 3.
bool isTriangle(const Domain& domain, const std::int32_t* slots);

} // namespace model
