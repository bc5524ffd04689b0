#include "tvncommon/search/KDTree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace {

using namespace KDTree;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

enum class Kind { anywhere, lattice, alike, oneDimension, notAllNumbers };

// Returns points of the tree or of a search. On the lattice many points are equal and many have the
// same distance.
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

// Compares every query at a point with a loop over all points.
template<std::size_t D>
void checkQueries(const Tree<D>& tree, const std::vector<Point<D>>& points, const Point<D>& at,
                  double radius) {
    std::vector<std::int32_t> indices;
    std::int32_t count = -1, index = -1;
    const auto expectPointsWith = [&](const auto& property) {
        std::vector<std::int32_t> expected;
        for (std::size_t i = 0; i < points.size(); ++i)
            if (property(points[i])) expected.push_back(static_cast<std::int32_t>(i) + 1);
        indices.resize(static_cast<std::size_t>(count));
        std::ranges::sort(indices);
        EXPECT_EQ(indices, expected);
    };
    const auto squareTo = [&](std::int32_t i) {
        return i < 1 ? largest : square(points[static_cast<std::size_t>(i) - 1], at);
    };
    tree.exactSearch(at, indices, count);
    expectPointsWith([&](const Point<D>& p) { return p == at; });
    tree.radiusSearch(at, radius, indices, count);
    expectPointsWith(
        [&](const Point<D>& p) { return radius >= 0 && square(p, at) <= radius * radius; });
    Box<D> box{at, at};
    for (double& upper : box.upper) upper += radius;
    tree.rangeSearch(box, indices, count);
    expectPointsWith([&](const Point<D>& p) {
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
    EXPECT_EQ(squareTo(index), nearest);
    tree.nearestNeighborSearchWithTies(at, indices, count, distance);
    EXPECT_EQ(distance, std::sqrt(nearest));
    expectPointsWith(
        [&](const Point<D>& p) { return nearest < largest && square(p, at) == nearest; });
    for (const std::size_t n : {0U, 1U, 5U, 1000U}) {
        std::vector<double> distances(n);
        indices.resize(n);
        tree.nearestNNeighborSearch(at, static_cast<std::int32_t>(n), distances, indices, count);
        const auto found = static_cast<std::size_t>(count);
        ASSERT_EQ(found, std::min(n, squares.size()));
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_EQ(distances[i], i < found ? std::sqrt(squares[i]) : largest);
            EXPECT_TRUE(i >= found || squareTo(indices[i]) == squares[i]);
        }
        indices.resize(found);
        EXPECT_EQ(std::set(indices.begin(), indices.end()).size(), found);
    }
}

// Expects that every split divides a range in two, that the limits hold, and that children come
// after their parent.
template<std::size_t D>
void checkShape(const Tree<D>& tree) {
    std::vector<std::int32_t> depths(tree.nodes.size());
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        const Node<D>& node = tree.nodes[i];
        if (node.splitDim == 0) continue;
        const auto left = static_cast<std::size_t>(node.left);
        const auto right = static_cast<std::size_t>(node.right);
        depths[left] = depths[right] = depths[i] + 1;
        ASSERT_GE(node.last - node.first, tree.leafSize);
        ASSERT_EQ(tree.nodes[left].first, node.first);
        ASSERT_EQ(tree.nodes[left].last + 1, tree.nodes[right].first);
        ASSERT_EQ(tree.nodes[right].last, node.last);
    }
    EXPECT_EQ(tree.nodes[0].last, static_cast<std::int32_t>(tree.order.size()));
    EXPECT_EQ(tree.nodes.size(), static_cast<std::size_t>(2 * tree.leaves() - 1));
    EXPECT_EQ(*std::ranges::max_element(depths), tree.depth());
    EXPECT_LE(tree.depth(), tree.maxDepth);
}

template<std::size_t D>
void checkTree(Kind kind, std::size_t count, std::optional<std::int32_t> leafSize,
               std::optional<std::int32_t> maxDepth, std::mt19937& random) {
    const std::vector<Point<D>> points = makePoints<D>(kind, count, random);
    std::array<std::vector<double>, D> apart;
    std::array<std::span<const double>, D> views;
    std::vector<double> together;
    for (const Point<D>& point : points)
        together.insert(together.end(), point.begin(), point.end());
    for (std::size_t d = 0; d < D; ++d) {
        for (const Point<D>& point : points) apart[d].push_back(point[d]);
        views[d] = apart[d];
    }
    Tree<D> tree, same;
    tree.init1(views, leafSize, maxDepth);
    same.init2(together, leafSize, maxDepth);
    EXPECT_EQ(tree.order, same.order);
    EXPECT_EQ(tree.empty(), count == 0);
    const auto n = static_cast<std::int32_t>(count);
    EXPECT_EQ(tree.leafSize, std::clamp(leafSize.value_or(20), std::min(1, n), n));
    EXPECT_EQ(tree.maxDepth, std::max(maxDepth.value_or(n), 0));
    checkShape(tree);
    if (kind == Kind::anywhere) {
        EXPECT_EQ(tree.leaves() == 1, n <= tree.leafSize || tree.maxDepth == 0);
    }
    tree = same;
    same.destroy();
    ASSERT_TRUE(same.empty());
    for (const Point<D>& at : makePoints<D>(kind, 4, random))
        for (const double radius : {1.0, infinity}) checkQueries<D>(tree, points, at, radius);
    for (const Point<D>& at : makePoints<D>(Kind::anywhere, 4, random))
        for (const double radius : {-1.0, -0.1, 0.0, 0.3, 2.0, infinity, nan})
            checkQueries<D>(tree, points, at, radius);
}

TEST(KDTree, EveryQueryEqualsALoopOverAllPoints) {
    std::mt19937 random(1);
    for (const Kind kind :
         {Kind::anywhere, Kind::lattice, Kind::alike, Kind::oneDimension, Kind::notAllNumbers})
        for (const std::size_t count : {0U, 1U, 2U, 3U, 8U, 9U, 21U, 300U})
            for (const std::optional<std::int32_t> leafSize :
                 {{}, std::optional(-1), {1}, {3}, {400}})
                for (const std::optional<std::int32_t> maxDepth :
                     {{}, std::optional(-3), {0}, {2}}) {
                    checkTree<3>(kind, count, leafSize, maxDepth, random);
                    checkTree<2>(kind, count, leafSize, maxDepth, random);
                    ASSERT_FALSE(HasFailure())
                        << static_cast<int>(kind) << " " << count << " " << leafSize.value_or(-9)
                        << " " << maxDepth.value_or(-9);
                }
}

TEST(KDTree, EqualDistancesAreInTheOrderOfThePoints) {
    KDTree2D tree;
    const std::vector<double> points{3, 0, 1, 0, 0, -1, -1, 0, 0, 1};
    tree.init2(points, {}, 0); // one leaf, so that the order is that of the points
    std::array<double, 3> distances;
    std::array<std::int32_t, 3> indices;
    std::int32_t found = 0;
    double distance = 0;
    tree.nearestNNeighborSearch({0, 0}, 3, distances, indices, found);
    EXPECT_EQ(indices, (std::array{2, 3, 4}));
    tree.nearestNeighborSearch({0, 0}, found, distance);
    EXPECT_EQ(found, 2);
}

TEST(KDTree, PivotsAreInTheirRange) {
    std::vector<double> points(4000, 4.5);
    for (std::size_t i = 0; i < 10; ++i) points[2 * (995 + i)] = 2 * static_cast<double>(i);
    for (std::uint64_t k = 0; k < 50; ++k) {
        KDTree2D tree;
        tree.init2(points, {}, 0); // one leaf, so that the order is that of the points
        tree.random = {~k, k};     // the next number rounds up to the position after the range
        const std::int32_t cut = tree.medianCut(996, 1005, 1);
        const double value = tree.getValueXY(tree.getPoint(cut), 1);
        for (std::int32_t i = 996; i <= 1005; ++i)
            ASSERT_EQ(tree.getValueIndex(i, 1) <= value, i <= cut) << k;
    }
}

} // namespace
