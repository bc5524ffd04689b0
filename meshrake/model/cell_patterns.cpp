#include "meshrake/model/cell_patterns.hpp"

namespace model {

namespace {

constexpr CellPattern patterns[] = {
    {2, 2, {0, 1}},
    {3, 4, {0, 1, 2, 2}},
    {4, 4, {0, 1, 2, 3}},
    {6, 8, {0, 1, 2, 2, 3, 4, 5, 5}},
    {8, 8, {0, 1, 2, 3, 4, 5, 6, 7}},
};
constexpr CellPattern none;

} // namespace

const CellPattern& cellPattern(std::int32_t nodesPerElement) {
    for (const CellPattern& pattern : patterns)
        if (pattern.nodesPerElement == nodesPerElement) return pattern;
    return none;
}

bool isTriangle(const Domain& domain, const std::int32_t* slots) {
    return domain.nodesPerElement == 4 && slots[3] == 0;
}

} // namespace model
