#include "tvncommon/search/KDTree.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/search/KDTree_boxes.hpp"
#include "tvncommon/search/KDTree_building.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace KDTree {

namespace {

constexpr double farthest = std::numeric_limits<double>::max();

// Inserts a point into a list in ascending order of distance, after those of equal distance. If the
// list is full, its last point is dropped; the distance must be below that of the last point.
void insertPriority(double distance, std::int32_t index, std::span<double> distances,
                    std::span<std::int32_t> indices, std::int32_t& found) {
    auto position = static_cast<std::size_t>(found);
    if (position == distances.size())
        --position;
    else
        ++found;
    for (; position > 0 && distances[position - 1] > distance; --position) {
        distances[position] = distances[position - 1];
        indices[position] = indices[position - 1];
    }
    distances[position] = distance;
    indices[position] = index;
}

// The children of a node in the order in which a search for near points visits them.
struct ChildOrder {
    std::int32_t near, far;
};

template<std::size_t D>
ChildOrder childOrder(const Node<D>& node, double c) {
    return node.splitValue < c ? ChildOrder{node.right, node.left}
                               : ChildOrder{node.left, node.right};
}

template<std::size_t D>
bool mayContainNearer(const Tree<D>& tree, const Node<D>& node, const ChildOrder& children,
                      const Point<D>& at, double best) {
    const double gap = node.splitValue - tree.getValueXYZ(at, node.splitDim);
    return !(gap * gap > best) && // the gap of two infinite values is NaN
           boxDist2(tree.nodes[static_cast<std::size_t>(children.far)].box, at) <= best;
}

} // namespace

template<std::size_t D>
void Tree<D>::destroy() {
    leafSize = maxDepth = treeDepth = leafCount = 0;
    std::vector<std::int32_t>().swap(order);
    std::vector<Node<D>>().swap(nodes);
    coordinates = {};
    stride = 1;
}

template<std::size_t D>
bool Tree<D>::empty() const {
    return order.empty();
}

template<std::size_t D>
std::int32_t Tree<D>::depth() const {
    return treeDepth;
}

template<std::size_t D>
std::int32_t Tree<D>::leaves() const {
    return leafCount;
}

// Values equal to that of a split can be on both of its sides.
template<std::size_t D>
void Tree<D>::exactSearch(const Point<D>& at, std::vector<std::int32_t>& indices,
                          std::int32_t& count) const {
    rangeSearch({at, at}, indices, count);
}

template<std::size_t D>
void Tree<D>::nearestNeighborSearch(const Point<D>& at, std::int32_t& index,
                                    double& distance) const {
    index = 0;
    distance = farthest;
    if (!empty()) nearestNeighborSearchRec(0, at, distance, index);
    distance = std::sqrt(distance);
}

template<std::size_t D>
void Tree<D>::nearestNeighborSearchWithTies(const Point<D>& at, std::vector<std::int32_t>& indices,
                                            std::int32_t& count, double& distance) const {
    count = 0;
    distance = farthest;
    if (!empty()) nearestNeighborSearchTiesRec(0, at, distance, indices, count);
    distance = std::sqrt(distance);
}

template<std::size_t D>
void Tree<D>::nearestNNeighborSearch(const Point<D>& at, std::int32_t n,
                                     std::span<double> distances, std::span<std::int32_t> indices,
                                     std::int32_t& found) const {
    found = 0;
    const auto count = static_cast<std::size_t>(std::max(n, 0));
    distances = distances.first(count);
    std::ranges::fill(distances, farthest);
    if (empty() || count == 0) return;
    nearestNNeighborSearchRec(0, at, distances, indices.first(count), found);
    for (double& distance : distances.first(static_cast<std::size_t>(found)))
        distance = std::sqrt(distance);
}

template<std::size_t D>
void Tree<D>::radiusSearch(const Point<D>& at, double radius, std::vector<std::int32_t>& indices,
                           std::int32_t& count) const {
    count = 0;
    if (!empty() && radius >= 0) radiusSearchRec(0, at, radius * radius, indices, count);
}

template<std::size_t D>
void Tree<D>::rangeSearch(const Box<D>& box, std::vector<std::int32_t>& indices,
                          std::int32_t& count) const {
    count = 0;
    if (!empty()) rangeSearchRec(0, box, indices, count);
}

template<std::size_t D>
void Tree<D>::nearestNeighborSearchRec(std::int32_t nodeIndex, const Point<D>& at, double& best,
                                       std::int32_t& bestIndex) const {
    const Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    if (node.splitDim > 0) {
        const ChildOrder children = childOrder(node, getValueXYZ(at, node.splitDim));
        nearestNeighborSearchRec(children.near, at, best, bestIndex);
        if (mayContainNearer(*this, node, children, at, best))
            nearestNeighborSearchRec(children.far, at, best, bestIndex);
        return;
    }
    for (std::int32_t i = node.first; i <= node.last; ++i) {
        const double distance = dist2(at, i);
        if (!(distance < best)) continue;
        best = distance;
        bestIndex = order[offset(i)];
    }
}

template<std::size_t D>
void Tree<D>::nearestNeighborSearchTiesRec(std::int32_t nodeIndex, const Point<D>& at, double& best,
                                           std::vector<std::int32_t>& indices,
                                           std::int32_t& count) const {
    const Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    if (node.splitDim > 0) {
        const ChildOrder children = childOrder(node, getValueXYZ(at, node.splitDim));
        nearestNeighborSearchTiesRec(children.near, at, best, indices, count);
        if (mayContainNearer(*this, node, children, at, best))
            nearestNeighborSearchTiesRec(children.far, at, best, indices, count);
        return;
    }
    for (std::int32_t i = node.first; i <= node.last; ++i) {
        const double distance = dist2(at, i);
        if (!(distance <= best)) continue;
        if (distance < best) count = 0;
        best = distance;
        ArrayHelpers::pushback(order[offset(i)], count, indices, names<D>.pushback);
    }
}

template<std::size_t D>
void Tree<D>::nearestNNeighborSearchRec(std::int32_t nodeIndex, const Point<D>& at,
                                        std::span<double> distances,
                                        std::span<std::int32_t> indices,
                                        std::int32_t& found) const {
    const Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    if (node.splitDim > 0) {
        const ChildOrder children = childOrder(node, getValueXYZ(at, node.splitDim));
        nearestNNeighborSearchRec(children.near, at, distances, indices, found);
        if (mayContainNearer(*this, node, children, at, distances.back()))
            nearestNNeighborSearchRec(children.far, at, distances, indices, found);
        return;
    }
    for (std::int32_t i = node.first; i <= node.last; ++i) {
        const double distance = dist2(at, i);
        if (distance < distances.back())
            insertPriority(distance, order[offset(i)], distances, indices, found);
    }
}

template<std::size_t D>
void Tree<D>::radiusSearchRec(std::int32_t nodeIndex, const Point<D>& at, double radius2,
                              std::vector<std::int32_t>& indices, std::int32_t& count) const {
    const Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    if (node.splitDim > 0) {
        const ChildOrder children = childOrder(node, getValueXYZ(at, node.splitDim));
        radiusSearchRec(children.near, at, radius2, indices, count);
        if (mayContainNearer(*this, node, children, at, radius2))
            radiusSearchRec(children.far, at, radius2, indices, count);
        return;
    }
    for (std::int32_t i = node.first; i <= node.last; ++i)
        if (dist2(at, i) <= radius2)
            ArrayHelpers::pushback(order[offset(i)], count, indices, names<D>.pushback);
}

template<std::size_t D>
void Tree<D>::rangeSearchRec(std::int32_t nodeIndex, const Box<D>& box,
                             std::vector<std::int32_t>& indices, std::int32_t& count) const {
    const Node<D>& node = nodes[static_cast<std::size_t>(nodeIndex)];
    if (!intersectsBoundingBox(box, node.box)) return;
    const bool all = containsBoundingBox(box, node.box);
    if (node.splitDim > 0 && !all) {
        rangeSearchRec(node.left, box, indices, count);
        rangeSearchRec(node.right, box, indices, count);
        return;
    }
    for (std::int32_t i = node.first; i <= node.last; ++i)
        if (all || pointInBoundingBox(box, getPoint(i)))
            ArrayHelpers::pushback(order[offset(i)], count, indices, names<D>.pushback);
}

template<std::size_t D>
Point<D> Tree<D>::getPoint(std::int32_t position) const {
    Point<D> point;
    const auto at = static_cast<std::ptrdiff_t>(order[offset(position)] - 1) * stride;
    for (std::size_t d = 0; d < D; ++d) point[d] = coordinates[d][at];
    return point;
}

template<std::size_t D>
double Tree<D>::getValueIndex(std::int32_t position, std::int32_t dim) const {
    const auto at = static_cast<std::ptrdiff_t>(order[offset(position)] - 1) * stride;
    return coordinates[offset(dim)][at];
}

template<std::size_t D>
double Tree<D>::getValueXYZ(const Point<D>& at, std::int32_t dim) const {
    return at[offset(dim)];
}

template<std::size_t D>
double Tree<D>::dist2(const Point<D>& at, std::int32_t position) const {
    const Point<D> point = getPoint(position);
    double sum = 0;
    for (std::size_t d = 0; d < D; ++d) sum += (point[d] - at[d]) * (point[d] - at[d]);
    return sum;
}

template struct Tree<2>;
template struct Tree<3>;

} // namespace KDTree
