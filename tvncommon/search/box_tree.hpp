#pragma once

#include "tvncommon/search/point.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// A tree of boxes over items in space. It finds the items that may contain a point, and those that
// may be near it.
//
// The items are sorted so that neighbours in the order are neighbours in space. `groupSize` items
// in a row are a group, which the caller stores and searches itself. Eight groups are a block of
// the lowest level, eight blocks are a block of the next level. The order makes the boxes small and
// so the search fast, but the result depends on the boxes alone.
namespace box_tree {

inline constexpr std::size_t groupSize = 32; // a tree of larger groups takes less time to build
inline constexpr std::size_t fanOut = 8;

using Point = search::Point<3>;

// A box with its bounds, which can be infinite. A new box is empty.
struct Box {
    Point low, high;
    Box();
};

// Up to eight boxes, coordinate by coordinate, so that several are compared at a time.
struct Block {
    std::array<std::array<double, fanOut>, 3> low, high;
    std::array<std::int32_t, fanOut> number; // smallest item number within each box
};

struct Tree {
    std::vector<std::vector<Block>> levels; // from the groups up to a level with one block
};

// Returns the item numbers, from 0, in a spatial order. x, y, z are a point of each item. NaN and
// infinities count as the least value. Within runs of `runLength` items the order is arbitrary.
std::vector<std::int32_t> spatialOrder(std::span<const double> x, std::span<const double> y,
                                       std::span<const double> z,
                                       std::size_t runLength = groupSize);

// Returns the number of groups of this number of items.
std::size_t groupCount(std::size_t items);

// Extends the box of a group so that it contains an item from `low` to `high`.
void extend(Box& box, const Point& low, const Point& high);

// Builds the tree over the boxes of the groups and the smallest item number in each. The numbers
// are only for `nextContaining`, and can be empty for the other search.
void build(Tree& tree, std::span<const Box> groups, std::span<const std::int32_t> lowestNumbers);

// State of a search. The tree must not change until it ends.
struct Search {
    struct Step {
        double key; // smallest number, or square of the distance
        std::int32_t level;
        std::size_t index; // of a block, or of a group at level -1
    };
    const Tree* tree = nullptr;
    Point point{};
    std::size_t size = 0;
    // A stack, sorted by key within each block. At most seven steps remain of each level, and 11
    // levels are enough for 2^31 groups.
    std::array<Step, 96> steps;
};

void begin(Search& search, const Tree& tree, const Point& point);

// Finds the next group whose box contains the point and whose smallest item number is below
// `bound`. Returns false if there is none. The bound may decrease from call to call.
bool nextContaining(Search& search, std::int32_t bound, std::size_t& group);

// Finds the next group whose box is not farther from the point than the square root of `bound`,
// near groups first. Returns false if there is none. Squares are computed as dx * dx + dy * dy +
// dz * dz, so that with the same rounding no item is nearer than its box. The bound may decrease
// from call to call.
bool nextNear(Search& search, double bound, std::size_t& group);

} // namespace box_tree
