#include "bench/side_by_side.hpp"
#include "tvncommon/search/KDTree.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#if __has_include(<nanoflann.hpp>)

#include <nanoflann.hpp>

namespace {

constexpr std::size_t pointCount = 1000000;
constexpr std::size_t queryCount = 100000;
constexpr double limit = 1.5;

std::vector<double> randomPoints(std::size_t count, std::size_t dimensions, unsigned seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> coordinate(0, 100);
    std::vector<double> points(count * dimensions);
    for (double& value : points) value = coordinate(random);
    return points;
}

template<std::size_t D>
struct Points {
    std::vector<double> values;
    std::size_t kdtree_get_point_count() const { return values.size() / D; }
    double kdtree_get_pt(std::size_t i, std::size_t d) const { return values[i * D + d]; }
    template<class Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

template<std::size_t D>
using OtherTree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Points<D>>, Points<D>,
                                        static_cast<int>(D), std::uint32_t>;

// Sums of results. They must agree, and their use prevents the compiler from removing the searches.
struct Sums {
    std::size_t nearest = 0, inside = 0;
};

template<std::size_t D>
struct Problem {
    Points<D> points;
    std::vector<KDTree::Point<D>> queries;
    double radius;
    std::size_t leafSize;
};

template<std::size_t D>
Problem<D> makeProblem(std::size_t leafSize, double radius) {
    Problem<D> problem{{randomPoints(pointCount, D, 1)}, {}, radius, leafSize};
    const std::vector<double> coordinates = randomPoints(queryCount, D, 2);
    problem.queries.resize(queryCount);
    for (std::size_t q = 0; q < queryCount; ++q)
        for (std::size_t d = 0; d < D; ++d) problem.queries[q][d] = coordinates[q * D + d];
    return problem;
}

template<std::size_t D>
void build(const Problem<D>& problem, KDTree::Tree<D>& tree) {
    tree.init2(problem.points.values, static_cast<std::int32_t>(problem.leafSize));
}

template<std::size_t D>
OtherTree<D> buildOther(const Problem<D>& problem) {
    return OtherTree<D>(static_cast<int>(D), problem.points,
                        nanoflann::KDTreeSingleIndexAdaptorParams(problem.leafSize));
}

template<std::size_t D>
void findNearest(const Problem<D>& problem, const KDTree::Tree<D>& tree, Sums& sums) {
    std::int32_t index = 0;
    double distance = 0;
    for (const KDTree::Point<D>& at : problem.queries) {
        tree.nearestNeighborSearch(at, index, distance);
        sums.nearest += static_cast<std::size_t>(index - 1);
    }
}

template<std::size_t D>
void findNearestOther(const Problem<D>& problem, const OtherTree<D>& tree, Sums& sums) {
    std::uint32_t index = 0;
    double distance = 0;
    for (const KDTree::Point<D>& at : problem.queries) {
        tree.knnSearch(at.data(), 1, &index, &distance);
        sums.nearest += index;
    }
}

template<std::size_t D>
void findInside(const Problem<D>& problem, const KDTree::Tree<D>& tree, Sums& sums) {
    std::vector<std::int32_t> indices;
    std::int32_t count = 0;
    for (const KDTree::Point<D>& at : problem.queries) {
        tree.radiusSearch(at, problem.radius, indices, count);
        sums.inside += static_cast<std::size_t>(count);
    }
}

template<std::size_t D>
void findInsideOther(const Problem<D>& problem, const OtherTree<D>& tree, Sums& sums) {
    using Found = nanoflann::RadiusResultSet<double, std::uint32_t>; // unsorted
    // The type of this member depends on the version of nanoflann.
    std::remove_reference_t<decltype(Found::m_indices_dists)> points;
    for (const KDTree::Point<D>& at : problem.queries) {
        Found found(problem.radius * problem.radius, points);
        sums.inside += tree.radiusSearchCustomCallback(at.data(), found);
    }
}

template<std::size_t D>
bool compareTrees(std::size_t leafSize, double radius) {
    const Problem<D> problem = makeProblem<D>(leafSize, radius);
    const std::string name = std::to_string(D) + "d, leaf size " + std::to_string(leafSize) + ": ";
    KDTree::Tree<D> tree;
    build(problem, tree);
    const OtherTree<D> other = buildOther(problem);
    Sums ours, theirs;
    using side_by_side::compare;
    bool held = compare(
        name + "build", limit,
        [&] {
            KDTree::Tree<D> one;
            build(problem, one);
        },
        [&] { buildOther(problem); });
    held &= compare(
        name + "nearest", limit, [&] { findNearest(problem, tree, ours); },
        [&] { findNearestOther(problem, other, theirs); });
    held &= compare(
        name + "radius", limit, [&] { findInside(problem, tree, ours); },
        [&] { findInsideOther(problem, other, theirs); });
    held &= compare(
        name + "build, nearest and radius", limit,
        [&] {
            KDTree::Tree<D> one;
            build(problem, one);
            findNearest(problem, one, ours);
            findInside(problem, one, ours);
        },
        [&] {
            const OtherTree<D> one = buildOther(problem);
            findNearestOther(problem, one, theirs);
            findInsideOther(problem, one, theirs);
        });
    if (ours.nearest == theirs.nearest && ours.inside == theirs.inside) return held;
    std::printf("the results of the two trees differ\n");
    return false;
}

} // namespace

int main() {
    std::printf("%zu points, %zu queries, about 40 points within the radius\n", pointCount,
                queryCount);
    side_by_side::printHeadings("nanoflann");
    bool held = true;
    for (const std::size_t leafSize : {10U, 20U}) {
        held &= compareTrees<3>(leafSize, 2.1);
        held &= compareTrees<2>(leafSize, 0.35);
    }
    return held ? EXIT_SUCCESS : EXIT_FAILURE;
}

#else

int main() {
    std::printf("skipped: nanoflann is not installed (Debian's libnanoflann-dev)\n");
    return EXIT_SUCCESS;
}

#endif
