#include "tvncommon/search/box_tree.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace box_tree {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr const char* arrayName = "search tree";

// A point of an item, as a part of the longest side of the box around all items. The order does not
// need more than 32 bits.
struct Location {
    std::array<float, 3> at;
    std::int32_t item;
};

struct Extent {
    double low = infinity, high = -infinity;
};

Extent extentOf(std::span<const double> axis) {
    Extent extent;
    for (const double v : axis) {
        if (!std::isfinite(v)) continue;
        extent.low = std::min(extent.low, v);
        extent.high = std::max(extent.high, v);
    }
    return extent.low > extent.high ? Extent{0, 0} : extent;
}

// Moves the items for which `isFront` is true to the front and returns their number. Without a
// branch, which would be mispredicted for every second item.
template<class IsFront>
std::size_t partition(std::span<Location> items, IsFront isFront) {
    std::size_t front = 0;
    for (Location& item : items) {
        const Location current = item;
        item = items[front];
        items[front] = current;
        front += isFront(current);
    }
    return front;
}

// Estimates the value of the nth item along the axis from a sample.
float estimateNth(std::span<const Location> items, std::size_t nth, std::size_t axis) {
    std::array<float, 16> sample;
    for (std::size_t i = 0; i < sample.size(); ++i)
        sample[i] = items[i * items.size() / sample.size()].at[axis];
    const auto at =
        sample.begin() + static_cast<std::ptrdiff_t>(nth * sample.size() / items.size());
    std::nth_element(sample.begin(), at, sample.end());
    return *at;
}

// Moves the nth item along the axis to position `nth`, items that are not above it before it and
// items that are not below it after it.
void selectNth(std::span<Location> items, std::size_t nth, std::size_t axis) {
    constexpr std::size_t few = 64;
    while (items.size() > few) {
        const float value = estimateNth(items, nth, axis);
        const std::size_t below =
            partition(items, [=](const Location& p) { return p.at[axis] < value; });
        if (nth < below) {
            items = items.first(below);
            continue;
        }
        items = items.subspan(below);
        nth -= below;
        const std::size_t equal =
            partition(items, [=](const Location& p) { return p.at[axis] <= value; });
        if (nth < equal) return;
        items = items.subspan(equal);
        nth -= equal;
    }
    std::nth_element(
        items.begin(), items.begin() + static_cast<std::ptrdiff_t>(nth), items.end(),
        [axis](const Location& a, const Location& b) { return a.at[axis] < b.at[axis]; });
}

// Divides the items at the longest side of their box, recursively. The number of items in the first
// part is a power of two, so that no group and no block has items of both parts.
void sortSpatially(std::span<Location> items, std::size_t runLength, std::array<float, 3> low,
                   std::array<float, 3> high) {
    while (items.size() > runLength) {
        std::size_t axis = 0;
        for (std::size_t a = 1; a < 3; ++a)
            if (high[a] - low[a] > high[axis] - low[axis]) axis = a;
        const std::size_t first = std::bit_floor(items.size() - 1);
        selectNth(items, first, axis);
        std::array<float, 3> middle = high;
        middle[axis] = items[first].at[axis];
        sortSpatially(items.first(first), runLength, low, middle);
        low[axis] = middle[axis];
        items = items.subspan(first);
    }
}

Block emptyBlock() {
    Block block;
    for (std::size_t a = 0; a < 3; ++a) {
        block.low[a].fill(infinity);
        block.high[a].fill(-infinity);
    }
    block.number.fill(std::numeric_limits<std::int32_t>::max());
    return block;
}

void setBox(Block& block, std::size_t slot, const Box& box, std::int32_t number) {
    for (std::size_t a = 0; a < 3; ++a) {
        block.low[a][slot] = box.low[a];
        block.high[a][slot] = box.high[a];
    }
    block.number[slot] = number;
}

void summarize(const Block& block, Box& box, std::int32_t& number) {
    for (std::size_t a = 0; a < 3; ++a) {
        box.low[a] = *std::min_element(block.low[a].begin(), block.low[a].end());
        box.high[a] = *std::max_element(block.high[a].begin(), block.high[a].end());
    }
    number = *std::min_element(block.number.begin(), block.number.end());
}

// Adds an empty level for this number of boxes.
std::vector<Block>& addLevel(Tree& tree, std::size_t boxes) {
    std::vector<Block>& level = tree.levels.emplace_back();
    const std::size_t blocks = std::max<std::size_t>(1, (boxes + fanOut - 1) / fanOut);
    ArrayHelpers::allocateArray(level, static_cast<std::int64_t>(blocks), arrayName);
    std::fill(level.begin(), level.end(), emptyBlock());
    return level;
}

// Returns a bit for each box: bit k is 1 if box k contains the point and its number is below
// `bound`.
unsigned containing(const Block& block, const Point& p, std::int32_t bound) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < fanOut; ++k) {
        const bool holds = (block.low[0][k] <= p[0]) && (p[0] <= block.high[0][k]) &&
                           (block.low[1][k] <= p[1]) && (p[1] <= block.high[1][k]) &&
                           (block.low[2][k] <= p[2]) && (p[2] <= block.high[2][k]) &&
                           (block.number[k] < bound);
        bits |= static_cast<unsigned>(holds) << k;
    }
    return bits;
}

// Two boxes at a time take half the time; few compilers make such code from a loop over single
// boxes.
using Pair = double __attribute__((vector_size(16)));

Pair pairAt(const double* values) {
    Pair pair;
    std::memcpy(&pair, values, sizeof pair);
    return pair;
}

Pair greater(Pair a, Pair b) {
    return a > b ? a : b;
}

// Computes the squares of the distances to the boxes; bit k of the result is 1 if that of box k is
// not above `bound`. The differences are rounded as those to an item in the box are, so that no
// item is nearer than its box.
unsigned near(const Block& block, const Point& p, double bound,
              std::array<double, fanOut>& square) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < fanOut; k += 2) {
        Pair sum{};
        for (std::size_t a = 0; a < 3; ++a) {
            const Pair at{p[a], p[a]};
            const Pair under = pairAt(&block.low[a][k]) - at;
            const Pair over = at - pairAt(&block.high[a][k]);
            const Pair outside = greater(greater(under, over), Pair{});
            sum += outside * outside;
        }
        std::memcpy(&square[k], &sum, sizeof sum);
        for (std::size_t i = k; i < k + 2; ++i)
            bits |= static_cast<unsigned>(square[i] <= bound) << i;
    }
    return bits;
}

// Pushes a step onto the stack, below the steps since `bottom` that have a smaller key.
void pushSorted(Search& search, std::size_t bottom, const Search::Step& step) {
    std::size_t at = search.size++;
    for (; at > bottom && search.steps[at - 1].key < step.key; --at)
        search.steps[at] = search.steps[at - 1];
    search.steps[at] = step;
}

} // namespace

Box::Box() : low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity} {}

std::vector<std::int32_t> spatialOrder(std::span<const double> x, std::span<const double> y,
                                       std::span<const double> z, std::size_t runLength) {
    const std::array<Extent, 3> extents{extentOf(x), extentOf(y), extentOf(z)};
    double longest = 0;
    for (const Extent& extent : extents) longest = std::max(longest, extent.high - extent.low);
    const double perLength = longest > 0 ? 1 / longest : 0;
    const auto partOf = [&](std::size_t a, double v) {
        const double part = (v - extents[a].low) * perLength;
        return part >= 0 && part <= 1 ? static_cast<float>(part) : 0.0F;
    };

    const auto count = static_cast<std::int64_t>(x.size());
    std::vector<Location> items;
    ArrayHelpers::allocateArray(items, count, arrayName);
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = {{partOf(0, x[i]), partOf(1, y[i]), partOf(2, z[i])},
                    static_cast<std::int32_t>(i)};
    std::array<float, 3> high;
    for (std::size_t a = 0; a < 3; ++a) high[a] = partOf(a, extents[a].high);
    sortSpatially(items, runLength, {0, 0, 0}, high);

    std::vector<std::int32_t> order;
    ArrayHelpers::allocateArray(order, count, arrayName);
    for (std::size_t i = 0; i < items.size(); ++i) order[i] = items[i].item;
    return order;
}

std::size_t groupCount(std::size_t items) {
    return (items + groupSize - 1) / groupSize;
}

void extend(Box& box, const Point& low, const Point& high) {
    for (std::size_t a = 0; a < 3; ++a) {
        box.low[a] = std::min(box.low[a], low[a]);
        box.high[a] = std::max(box.high[a], high[a]);
    }
}

void build(Tree& tree, std::span<const Box> groups, std::span<const std::int32_t> lowestNumbers) {
    tree.levels.clear();
    std::vector<Block>& lowest = addLevel(tree, groups.size());
    for (std::size_t g = 0; g < groups.size(); ++g)
        setBox(lowest[g / fanOut], g % fanOut, groups[g],
               lowestNumbers.empty() ? 0 : lowestNumbers[g]);
    while (tree.levels.back().size() > 1) {
        std::vector<Block>& above = addLevel(tree, tree.levels.back().size());
        const std::vector<Block>& below = tree.levels[tree.levels.size() - 2];
        for (std::size_t b = 0; b < below.size(); ++b) {
            Box box;
            std::int32_t number = 0;
            summarize(below[b], box, number);
            setBox(above[b / fanOut], b % fanOut, box, number);
        }
    }
}

void begin(Search& search, const Tree& tree, const Point& point) {
    search.tree = &tree;
    search.point = point;
    search.size = 1;
    search.steps[0] = {-infinity, static_cast<std::int32_t>(tree.levels.size()) - 1, 0};
}

bool nextContaining(Search& search, std::int32_t bound, std::size_t& group) {
    while (search.size > 0) {
        const Search::Step step = search.steps[--search.size];
        if (step.key >= bound) continue;
        group = step.index;
        if (step.level < 0) return true;
        const Block& block = search.tree->levels[static_cast<std::size_t>(step.level)][step.index];
        const std::size_t bottom = search.size;
        for (unsigned in = containing(block, search.point, bound); in != 0; in &= in - 1) {
            const auto k = static_cast<std::size_t>(std::countr_zero(in));
            pushSorted(
                search, bottom,
                {static_cast<double>(block.number[k]), step.level - 1, step.index * fanOut + k});
        }
    }
    return false;
}

bool nextNear(Search& search, double bound, std::size_t& group) {
    while (search.size > 0) {
        const Search::Step step = search.steps[--search.size];
        if (step.key > bound) continue;
        group = step.index;
        if (step.level < 0) return true;
        const Block& block = search.tree->levels[static_cast<std::size_t>(step.level)][step.index];
        const std::size_t bottom = search.size;
        std::array<double, fanOut> square;
        for (unsigned in = near(block, search.point, bound, square); in != 0; in &= in - 1) {
            const auto k = static_cast<std::size_t>(std::countr_zero(in));
            pushSorted(search, bottom, {square[k], step.level - 1, step.index * fanOut + k});
        }
    }
    return false;
}

} // namespace box_tree
