#pragma once

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/search/KDTree.hpp"
#include "tvncommon/search/KDTree_boxes.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string_view>
#include <utility>

// Construction of a tree.
namespace KDTree {

constexpr std::uint64_t randomSeed = 20240327; // any number, but the same in every run
constexpr std::int32_t insertionSortBelow = 8; // the median of shorter ranges is found by sorting

struct Names {
    std::string_view node, order, pushback;
};

template<std::size_t D>
constexpr Names names =
    D == 3 ? Names{"KDTree3D node", "KDTree3D order array", "KDTree3D pushback"}
           : Names{"KDTree2D node", "KDTree2D order array", "KDTree2D pushback"};

inline std::size_t offset(std::int32_t number) {
    return static_cast<std::size_t>(number) - 1;
}

// True if `a` comes before `b`. NaN comes after all numbers.
inline bool below(double a, double b) {
    return a < b || (std::isnan(b) && !std::isnan(a));
}

// A fixed sequence of random numbers gives the same tree in every build. The multiplier and the
// modulus are those of a Lehmer generator (modulus 2^32 - 5, the greatest prime below 2^32);
// 104729, the 10,000th prime, replaces 0, which it would never leave.
inline void initRandomSeed(std::uint64_t seed, std::array<std::uint64_t, 2>& random) {
    std::vector<std::int32_t> seeds;
    ArrayHelpers::allocateArray(seeds, 4, "KDTree3D RNG seed array");
    std::uint64_t s = seed;
    for (std::int32_t& entry : seeds) {
        s %= std::uint64_t{1} << 32;
        s = (s == 0 ? 104729 : s) * 279470273 % 4294967291;
        entry = static_cast<std::int32_t>(s % 2147483647);
    }
    const auto word = [&](std::size_t i) { return static_cast<std::uint64_t>(seeds[i]); };
    random = {word(0) << 32 | word(1), word(2) << 32 | word(3)};
}

// Returns a number from 0 up to but not including 1, by xoroshiro128+ (Blackman and Vigna, 2018).
// The upper 53 bits, which are the best, fill the significand of a double.
inline double nextRandom(std::array<std::uint64_t, 2>& random) {
    const std::uint64_t a = random[0], sum = a + random[1], b = random[1] ^ a;
    random = {(a << 24 | a >> 40) ^ b ^ b << 16, b << 37 | b >> 27};
    return static_cast<double>(sum >> 11) * 0x1p-53;
}

inline double medianOf3(double a, double b, double c) {
    if (below(b, a)) std::swap(a, b);
    return below(c, b) ? (below(c, a) ? a : c) : b;
}

// A dimension in which some coordinate is NaN has an upper bound of NaN, so that no box contains
// it.
template<std::size_t D>
Box<D> makeBoundingBox(const Tree<D>& tree) {
    Box<D> box{};
    if (tree.order.empty()) return box;
    for (std::size_t d = 0; d < D; ++d) {
        double lower = tree.coordinates[d][0], upper = lower;
        for (std::size_t i = 1; i < tree.order.size(); ++i) {
            const double value = tree.coordinates[d][static_cast<std::ptrdiff_t>(i) * tree.stride];
            if (below(value, lower)) lower = value;
            if (below(upper, value)) upper = value;
        }
        box.lower[d] = lower;
        box.upper[d] = upper;
    }
    return box;
}

template<std::size_t D>
void build(Tree<D>& tree, std::size_t count, std::optional<std::int32_t> leafSize,
           std::optional<std::int32_t> maxDepth) {
    if (count >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        ArrayHelpers::allocationFailed(names<D>.order);
    const auto n = static_cast<std::int32_t>(count);
    tree.leafSize = std::min(std::max(leafSize.value_or(20), 1), n);
    tree.maxDepth = std::max(maxDepth.value_or(n), 0);
    ArrayHelpers::allocateArray(tree.order, n, names<D>.order);
    std::iota(tree.order.begin(), tree.order.end(), 1);
    initRandomSeed(randomSeed, tree.random);
    tree.buildTree(1, n, 0, makeBoundingBox(tree));
}

template<std::size_t D>
std::int32_t addNode(Tree<D>& tree, std::int32_t first, std::int32_t last, const Box<D>& box) {
    try {
        tree.nodes.push_back({.first = first, .last = last, .box = box});
    } catch (const std::bad_alloc&) {
        ArrayHelpers::allocationFailed(names<D>.node);
    } catch (const std::length_error&) {
        ArrayHelpers::allocationFailed(names<D>.node);
    }
    return static_cast<std::int32_t>(tree.nodes.size()) - 1;
}

template<std::size_t D>
void insertionSort(Tree<D>& tree, std::int32_t first, std::int32_t last, std::int32_t dim) {
    for (std::int32_t i = first + 1; i <= last; ++i)
        for (std::int32_t j = i; j > first; --j) {
            if (!below(tree.getValueIndex(j, dim), tree.getValueIndex(j - 1, dim))) break;
            std::swap(tree.order[offset(j)], tree.order[offset(j - 1)]);
        }
}

// Returns the median of three medians of three coordinates at random positions of the range.
template<std::size_t D>
double pivotValue(Tree<D>& tree, std::int32_t first, std::int32_t last, std::int32_t dim) {
    std::array<double, 3> medians{};
    for (double& median : medians) {
        std::array<double, 3> values{};
        for (double& value : values) {
            const double position = nextRandom(tree.random) * (last - first + 1.0) + first;
            // Rounding can give the position after the range.
            value = tree.getValueIndex(std::min(static_cast<std::int32_t>(position), last), dim);
        }
        median = medianOf3(values[0], values[1], values[2]);
    }
    return medianOf3(medians[0], medians[1], medians[2]);
}

template<std::size_t D>
void Tree<D>::init1(const std::array<std::span<const double>, D>& points,
                    std::optional<std::int32_t> leafSizeWanted,
                    std::optional<std::int32_t> maxDepthWanted) {
    destroy();
    std::size_t count = points[0].size();
    for (std::size_t d = 0; d < D; ++d) {
        count = std::min(count, points[d].size());
        coordinates[d] = points[d].data();
    }
    build(*this, count, leafSizeWanted, maxDepthWanted);
}

template<std::size_t D>
void Tree<D>::init2(std::span<const double> points, std::optional<std::int32_t> leafSizeWanted,
                    std::optional<std::int32_t> maxDepthWanted) {
    destroy();
    for (std::size_t d = 0; d < D; ++d)
        coordinates[d] = points.subspan(std::min(d, points.size())).data();
    stride = D;
    build(*this, points.size() / D, leafSizeWanted, maxDepthWanted);
}

template<std::size_t D>
std::int32_t Tree<D>::buildTree(std::int32_t first, std::int32_t last, std::int32_t depth,
                                const Box<D>& box) {
    const std::int32_t nodeIndex = addNode(*this, first, last, box);
    bool split = last - first >= leafSize && depth != maxDepth;
    std::int32_t mid = last;
    const std::int32_t dim = splitOnWidest(box, depth);
    if (split) {
        mid = medianCut(first, last, dim);
        split = mid < last;
    }
    if (!split) {
        treeDepth = std::max(treeDepth, depth);
        ++leafCount;
        return nodeIndex;
    }
    const double splitValue = getValueIndex(mid, dim);
    Box<D> leftBox = box, rightBox = box;
    double& upper = leftBox.upper[offset(dim)];
    double& lower = rightBox.lower[offset(dim)];
    if (upper > splitValue) upper = splitValue;
    if (lower < splitValue) lower = splitValue;
    const std::int32_t left = buildTree(first, mid, depth + 1, leftBox);
    const std::int32_t right = buildTree(mid + 1, last, depth + 1, rightBox);
    Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    node.splitDim = dim;
    node.splitValue = splitValue;
    node.left = left;
    node.right = right;
    return nodeIndex;
}

template<std::size_t D>
std::int32_t Tree<D>::medianCut(std::int32_t first, std::int32_t last, std::int32_t dim) {
    if (last - first < insertionSortBelow) {
        insertionSort(*this, first, last, dim);
        return first + (last - first) / 2;
    }
    const double pivot = pivotValue(*this, first, last, dim);
    std::int32_t end = first; // of the left part
    while (below(getValueIndex(end, dim), pivot)) ++end;
    std::int32_t pivotPosition = end;
    for (std::int32_t i = end; i <= last; ++i) {
        const double value = getValueIndex(i, dim);
        if (below(pivot, value)) continue;
        std::swap(order[offset(i)], order[offset(end)]);
        if (!below(value, pivot)) pivotPosition = end;
        ++end;
    }
    std::swap(order[offset(pivotPosition)], order[offset(end - 1)]);
    return end - 1;
}

} // namespace KDTree
