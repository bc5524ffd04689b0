#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// A tree over items in space: which of them may hold a point, and which may be near it.
//
// The items stand in an order in which neighbours are neighbours in space. Eight of them in a row
// are a group, which the caller keeps and searches itself; eight groups are a block, eight blocks a
// block of the next level. The order makes the boxes small and the search fast, but does not touch
// its result: a search goes by the boxes alone.
namespace box_tree {

inline constexpr std::size_t groupSize = 32; // larger ones take less time to build
inline constexpr std::size_t fanOut = 8;

using Point = std::array<double, 3>;

// What lies within a box, its bounds included. A new box is empty; infinite bounds are allowed.
struct Box {
    Point low, high;
    Box();
};

// Up to eight boxes side by side.
struct Block {
    std::array<std::array<double, fanOut>, 3> low, high;
    std::array<std::int32_t, fanOut> number; // smallest item number within each box
};

struct Tree {
    std::vector<std::vector<Block>> levels; // from the groups up; the last has one block
};

// Item numbers from 0 in such an order; x, y, z lie somewhere on the items. A value that is no
// number has no place of its own. Within runs of `runLength` the order is any.
std::vector<std::int32_t> spatialOrder(std::span<const double> x, std::span<const double> y,
                                       std::span<const double> z,
                                       std::size_t runLength = groupSize);

// Number of groups of so many items.
std::size_t groupCount(std::size_t items);

// Puts an item into the box of its group.
void extend(Box& box, const Point& low, const Point& high);

// Builds the tree over the boxes of the groups and the smallest item number in each, which only
// `nextHolding` goes by: none need be given for the other search.
void build(Tree& tree, std::span<const Box> groups, std::span<const std::int32_t> lowestNumbers);

// A search under way. Neither the tree nor the point may change until it ends.
struct Search {
    struct Step {
        double key; // smallest number, or square of the distance
        std::int32_t level;
        std::size_t index; // of a block, or of a group at level -1
    };
    const Tree* tree = nullptr;
    Point point{};
    std::size_t size = 0;
    std::array<Step, 96> steps; // at most seven left over from each level
};

void begin(Search& search, const Tree& tree, const Point& point);

// The next group whose box holds the point and whose smallest item number is below `bound`; false
// when there is none. The bound may fall from call to call.
bool nextHolding(Search& search, std::int32_t bound, std::size_t& group);

// The next group with a box no farther from the point than the root of `bound`, near ones first.
// Distances are dx * dx + dy * dy + dz * dz as they round: no item in the box is nearer than that.
bool nextNear(Search& search, double bound, std::size_t& group);

} // namespace box_tree
