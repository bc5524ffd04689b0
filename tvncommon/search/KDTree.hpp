#pragma once

#include "tvncommon/search/point.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// KD trees over a fixed set of points in two or three dimensions, for exact, nearest, radius and
// range queries. Points are numbered from 1. The tree refers to the caller's coordinates, which
// must outlive it; a copy of a tree refers to the same coordinates. A point with a coordinate that
// is NaN is in no answer.
namespace KDTree {

using search::Point;

template<std::size_t D>
struct Box {
    std::array<double, D> lower, upper;
};

// A node of the tree owns a range of `order`, which its two children divide. A leaf has no
// children.
template<std::size_t D>
struct Node {
    std::int32_t first = 1, last = 0; // positions in `order`, from 1
    std::int32_t splitDim = 0;        // dimension from 1 on; 0 in a leaf
    double splitValue = 0;
    Box<D> box{};
    std::int32_t left = 0, right = 0; // indices in `nodes`, from 0; 0, the root, in a leaf
};

// Results are lists of point numbers of which the first `count` entries are in use. Distances are
// in the unit of the coordinates; the recursive functions compare their squares. The members are
// virtual so that a derived record can replace one. The last four are final, because they are
// called for every point.
template<std::size_t D>
struct Tree {
    std::int32_t leafSize = 0;  // a range of at most this length is not split
    std::int32_t maxDepth = 0;  // a node at this depth is not split
    std::int32_t treeDepth = 0; // of the deepest leaf
    std::int32_t leafCount = 0;
    std::vector<std::int32_t> order;            // point numbers; each node owns a range of them
    std::array<const double*, D> coordinates{}; // of the first point
    std::ptrdiff_t stride = 1;                  // from one point's coordinate to the next one's
    std::vector<Node<D>> nodes;                 // the root first; none before `init1` or `init2`

    Tree() = default;
    Tree(const Tree&) = default;
    Tree(Tree&&) = default;
    Tree& operator=(const Tree&) = default;
    Tree& operator=(Tree&&) = default;
    virtual ~Tree() = default;

    // Build the tree over one array for each dimension, of which the shortest gives the number of
    // points, or over one array of points. By default leaves have up to 20 points and the depth has
    // no limit. A failed allocation ends the run.
    virtual void init1(const std::array<std::span<const double>, D>& points,
                       std::optional<std::int32_t> leafSize = {},
                       std::optional<std::int32_t> maxDepth = {});
    virtual void init2(std::span<const double> points, std::optional<std::int32_t> leafSize = {},
                       std::optional<std::int32_t> maxDepth = {});
    virtual void destroy();

    virtual bool empty() const;
    virtual std::int32_t depth() const;
    virtual std::int32_t leaves() const;

    // Finds all points at exactly this position.
    virtual void exactSearch(const Point<D>& at, std::vector<std::int32_t>& indices,
                             std::int32_t& count) const;

    // Find the nearest point, or 0 in an empty tree, and all points that are equally near.
    virtual void nearestNeighborSearch(const Point<D>& at, std::int32_t& index,
                                       double& distance) const;
    virtual void nearestNeighborSearchWithTies(const Point<D>& at,
                                               std::vector<std::int32_t>& indices,
                                               std::int32_t& count, double& distance) const;

    // Stores the `n` nearest points in order of distance in arrays of `n`. If the tree has fewer
    // points, `found` is below `n` and the other distances are the largest finite number.
    virtual void nearestNNeighborSearch(const Point<D>& at, std::int32_t n,
                                        std::span<double> distances,
                                        std::span<std::int32_t> indices, std::int32_t& found) const;

    // Find all points at a distance of at most `radius`, and all points in a box, which includes
    // its bounds.
    virtual void radiusSearch(const Point<D>& at, double radius, std::vector<std::int32_t>& indices,
                              std::int32_t& count) const;
    virtual void rangeSearch(const Box<D>& box, std::vector<std::int32_t>& indices,
                             std::int32_t& count) const;

    virtual void nearestNeighborSearchRec(std::int32_t nodeIndex, const Point<D>& at, double& best,
                                          std::int32_t& bestIndex) const;
    virtual void nearestNeighborSearchTiesRec(std::int32_t nodeIndex, const Point<D>& at,
                                              double& best, std::vector<std::int32_t>& indices,
                                              std::int32_t& count) const;
    virtual void nearestNNeighborSearchRec(std::int32_t nodeIndex, const Point<D>& at,
                                           std::span<double> distances,
                                           std::span<std::int32_t> indices,
                                           std::int32_t& found) const;
    virtual void radiusSearchRec(std::int32_t nodeIndex, const Point<D>& at, double radius2,
                                 std::vector<std::int32_t>& indices, std::int32_t& count) const;
    virtual void rangeSearchRec(std::int32_t nodeIndex, const Box<D>& box,
                                std::vector<std::int32_t>& indices, std::int32_t& count) const;

    // Creates the node of a range and its descendants, and returns its index in `nodes`.
    virtual std::int32_t buildTree(std::int32_t first, std::int32_t last, std::int32_t depth,
                                   const Box<D>& box);

    // Partitions the range at the value of one of its points and returns the position of that
    // point: no point before it has a greater value, no point after it a smaller one.
    virtual std::int32_t medianCut(std::int32_t first, std::int32_t last, std::int32_t dim);

    // Return the point at a position of `order`, its coordinate in a dimension (from 1), and the
    // coordinate of any point.
    virtual Point<D> getPoint(std::int32_t position) const final;
    virtual double getValueIndex(std::int32_t position, std::int32_t dim) const final;
    virtual double getValueXYZ(const Point<D>& at, std::int32_t dim) const final;

    // The same as `getValueXYZ`, under its name in two dimensions.
    double getValueXY(const Point<D>& at, std::int32_t dim) const requires(D == 2) {
        return getValueXYZ(at, dim);
    }

    // Returns the square of the distance from `at` to the point at a position of `order`.
    virtual double dist2(const Point<D>& at, std::int32_t position) const final;

    std::array<std::uint64_t, 2> random{}; // state of the random number generator
};

using KDTree2D = Tree<2>;
using KDTree3D = Tree<3>;

extern template struct Tree<2>;
extern template struct Tree<3>;

} // namespace KDTree
