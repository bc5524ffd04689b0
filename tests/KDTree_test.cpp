#include "tvncommon/KDTree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace {

using namespace KDTree;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

enum class Kind { anywhere, lattice, alike, oneDimension, notAllNumbers };

// Coordinates of points and of places to search at; on the lattice many coincide and many are
// equally far.
template<std::size_t D>
std::vector<Point<D>> makePoints(Kind kind, std::size_t count, std::mt19937& random) {
    std::uniform_real_distribution<double> anywhere(-1, 1);
    std::uniform_int_distribution<int> lattice(-2, 2), percent(0, 99);
    std::vector<Point<D>> points(count);
    for (Point<D>& point : points)
        for (std::size_t d = 0; d < D; ++d) {
            point[d] = kind == Kind::anywhere ? anywhere(random) : lattice(random);
            if (kind == Kind::alike || (kind == Kind::oneDimension && d > 0)) point[d] = 1;
            if (kind != Kind::notAllNumbers || percent(random) >= 15) continue;
            const double odd[] = {nan, infinity, -infinity, 1e200};
            point[d] = odd[percent(random) % 4];
        }
    return points;
}

template<std::size_t D>
double square(const Point<D>& a, const Point<D>& b) {
    double sum = 0;
    for (std::size_t d = 0; d < D; ++d) sum += (a[d] - b[d]) * (a[d] - b[d]);
    return sum;
}

std::vector<std::int32_t> sorted(std::vector<std::int32_t> indices, std::int32_t count) {
    indices.resize(static_cast<std::size_t>(count));
    std::ranges::sort(indices);
    return indices;
}

template<std::size_t D>
std::vector<std::int32_t> pointsThat(const std::vector<Point<D>>& points,
                                     const std::function<bool(const Point<D>&)>& hold) {
    std::vector<std::int32_t> indices;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (hold(points[i])) indices.push_back(static_cast<std::int32_t>(i) + 1);
    return indices;
}

// Every query at one place against a plain loop over all points.
template<std::size_t D>
void checkQueries(const Tree<D>& tree, const std::vector<Point<D>>& points, const Point<D>& at,
                  double radius) {
    std::vector<std::int32_t> indices;
    std::int32_t count = -1, index = -1;
    const auto expectPoints = [&](const std::function<bool(const Point<D>&)>& hold) {
        EXPECT_EQ(sorted(indices, count), pointsThat<D>(points, hold));
    };
    tree.exactSearch(at, indices, count);
    expectPoints([&](const Point<D>& p) { return p == at; });
    tree.radiusSearch(at, radius, indices, count);
    expectPoints([&](const Point<D>& p) { return square(p, at) <= radius * radius; });

    Box<D> box{at, at};
    for (double& upper : box.upper) upper += radius;
    tree.rangeSearch(box, indices, count);
    expectPoints([&](const Point<D>& p) {
        bool inside = true;
        for (std::size_t d = 0; d < D; ++d)
            inside = inside && box.lower[d] <= p[d] && p[d] <= box.upper[d];
        return inside;
    });

    std::vector<double> squares;
    for (const Point<D>& p : points)
        if (square(p, at) < largest) squares.push_back(square(p, at));
    std::ranges::sort(squares);
    const double nearest = squares.empty() ? largest : squares.front();
    double distance = -1;
    tree.nearestNeighborSearch(at, index, distance);
    EXPECT_EQ(distance, std::sqrt(nearest));
    ASSERT_EQ(index > 0, !squares.empty());
    if (index > 0) {
        EXPECT_EQ(square(points[static_cast<std::size_t>(index) - 1], at), nearest);
    }
    tree.nearestNeighborSearchWithTies(at, indices, count, distance);
    EXPECT_EQ(distance, std::sqrt(nearest));
    expectPoints([&](const Point<D>& p) { return nearest < largest && square(p, at) == nearest; });

    for (const std::int32_t n : {0, 1, 5, 1000}) {
        const auto size = static_cast<std::size_t>(n);
        std::vector<double> distances(size);
        std::vector<std::int32_t> numbers(size);
        tree.nearestNNeighborSearch(at, n, distances, numbers, count);
        ASSERT_EQ(static_cast<std::size_t>(count), std::min(size, squares.size()));
        for (std::size_t i = 0; i < size; ++i)
            EXPECT_EQ(distances[i], i < squares.size() ? std::sqrt(squares[i]) : largest);
        for (std::size_t i = 0; i < std::min(size, squares.size()); ++i)
            EXPECT_EQ(std::sqrt(square(points[static_cast<std::size_t>(numbers[i]) - 1], at)),
                      distances[i]);
        const auto once = sorted(numbers, count);
        EXPECT_EQ(std::ranges::adjacent_find(once), once.end());
    }
}

// Ranges of the leaves are a partition of all points, in which no limit is broken.
template<std::size_t D>
void checkShape(const Tree<D>& tree, std::size_t pointCount, std::int32_t node = 0,
                std::int32_t depth = 0) {
    const Node<D>& here = tree.nodes[static_cast<std::size_t>(node)];
    ASSERT_LE(depth, tree.treeDepth);
    ASSERT_LE(depth, tree.maxDepth);
    if (node == 0) {
        ASSERT_EQ(here.first, 1);
        ASSERT_EQ(here.last, static_cast<std::int32_t>(pointCount));
        ASSERT_EQ(tree.nodes.size(), static_cast<std::size_t>(2 * tree.leaves() - 1));
        EXPECT_EQ(sorted(tree.order, here.last),
                  pointsThat<D>(std::vector<Point<D>>(pointCount), [](auto&) { return true; }));
    }
    if (here.splitDim == 0) return;
    ASSERT_GT(here.last - here.first + 1, tree.leafSize);
    const Node<D>& left = tree.nodes[static_cast<std::size_t>(here.left)];
    const Node<D>& right = tree.nodes[static_cast<std::size_t>(here.right)];
    ASSERT_EQ(left.first, here.first);
    ASSERT_EQ(left.last + 1, right.first);
    ASSERT_EQ(right.last, here.last);
    checkShape(tree, pointCount, here.left, depth + 1);
    checkShape(tree, pointCount, here.right, depth + 1);
}

template<std::size_t D>
void checkTree(Kind kind, std::size_t count, std::optional<std::int32_t> leafSize,
               std::optional<std::int32_t> maxDepth, std::mt19937& random) {
    const std::vector<Point<D>> points = makePoints<D>(kind, count, random);
    std::array<std::vector<double>, D> apart;
    std::vector<double> together;
    for (const Point<D>& point : points)
        for (std::size_t d = 0; d < D; ++d) {
            apart[d].push_back(point[d]);
            together.push_back(point[d]);
        }
    Tree<D> tree, same;
    std::array<std::span<const double>, D> views;
    for (std::size_t d = 0; d < D; ++d) views[d] = apart[d];
    tree.init1(views, leafSize, maxDepth);
    same.init2(together, leafSize, maxDepth);
    EXPECT_EQ(tree.order, same.order);
    EXPECT_EQ(tree.empty(), count == 0);
    EXPECT_EQ(tree.depth(), same.depth());
    checkShape(tree, count);
    tree = same;
    same.destroy();
    ASSERT_TRUE(same.empty());
    for (const Point<D>& at : makePoints<D>(kind, 4, random))
        for (const double radius : {1.0, infinity}) checkQueries<D>(tree, points, at, radius);
    for (const Point<D>& at : makePoints<D>(Kind::anywhere, 4, random))
        for (const double radius : {0.0, 0.3, 2.0, infinity})
            checkQueries<D>(tree, points, at, radius);
    if (count > 0) checkQueries<D>(tree, points, points[0], 0);
}

TEST(KDTree, EveryQueryAgreesWithAPlainLoop) {
    std::mt19937 random(1);
    for (const Kind kind :
         {Kind::anywhere, Kind::lattice, Kind::alike, Kind::oneDimension, Kind::notAllNumbers})
        for (const std::size_t count : {0U, 1U, 2U, 3U, 8U, 9U, 21U, 300U})
            for (const std::optional<std::int32_t> leafSize : {-1, 1, 3, 400, 0})
                for (const std::optional<std::int32_t> maxDepth : {-3, 0, 2, 1000}) {
                    const auto size = leafSize == 0 ? std::nullopt : leafSize;
                    const auto limit = maxDepth == 1000 ? std::nullopt : maxDepth;
                    checkTree<3>(kind, count, size, limit, random);
                    checkTree<2>(kind, count, size, limit, random);
                    ASSERT_FALSE(HasFailure())
                        << static_cast<int>(kind) << " " << count << " " << leafSize.value_or(0)
                        << " " << maxDepth.value_or(0);
                }
}

TEST(KDTree, DefaultsAndLimits) {
    std::mt19937 random(2);
    const auto values = makePoints<3>(Kind::anywhere, 1000, random);
    const std::span<const double> points(values[0].data(), 3000);
    struct Case {
        std::optional<std::int32_t> leafSize, maxDepth;
        std::int32_t leafSizeInUse, maxDepthInUse;
    };
    for (const Case& c : {Case{{}, {}, 20, 1000}, Case{0, -5, 1, 0}, Case{1001, 7, 1000, 7}}) {
        KDTree3D tree;
        tree.init2(points, c.leafSize, c.maxDepth);
        EXPECT_EQ(tree.leafSize, c.leafSizeInUse);
        EXPECT_EQ(tree.maxDepth, c.maxDepthInUse);
        EXPECT_EQ(tree.leaves() == 1, c.maxDepthInUse == 0 || c.leafSizeInUse == 1000);
    }
    KDTree2D none;
    none.init2({}, 5);
    EXPECT_EQ(none.leafSize, 0);
    EXPECT_EQ(none.leaves(), 1);
    EXPECT_EQ(none.nodes.front().last, 0);
}

TEST(KDTree, NegativeRadiusHoldsNothing) {
    const std::vector<double> point{1, 1};
    KDTree2D tree;
    tree.init2(point);
    std::vector<std::int32_t> indices;
    std::int32_t count = -1;
    for (const double radius : {-1.0, -0.1, nan}) {
        tree.radiusSearch({1, 1}, radius, indices, count);
        EXPECT_EQ(count, 0) << radius;
    }
}

TEST(KDTree, PivotsComeFromTheirRange) {
    std::vector<double> points(4000, 4.5);
    for (std::size_t i = 0; i < 10; ++i) points[2 * (995 + i)] = 2 * static_cast<double>(i);
    for (std::uint64_t k = 0; k < 50; ++k) {
        KDTree2D tree;
        tree.init2(points, {}, 0); // a single leaf, so that the order is that of the points
        tree.random = {~k, k};     // the next number rounds up to the position behind the range
        const std::int32_t cut = tree.medianCut(996, 1005, 1);
        for (std::int32_t i = 996; i <= 1005; ++i)
            ASSERT_EQ(tree.getValueIndex(i, 1) <= tree.getValueIndex(cut, 1), i <= cut) << k;
    }
}

} // namespace
