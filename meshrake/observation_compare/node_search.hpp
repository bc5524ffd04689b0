#pragma once

#include "meshrake/model/domain.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace observation_compare {

// Which of a domain's nodes are looked at, and how far they are.
struct NodeSet {
    const model::Domain& domain; // with coordinates of its own
    std::int32_t count;          // the nodes from 1 on
    bool inPlan;                 // z plays no part
};

// The node nearest to each point: the one that a loop over the nodes in ascending order, with a
// strict comparison of distances, would keep; 0 where all distances are at least 1e20 or no
// numbers. x, y and z of the points are equally long.
std::vector<std::int32_t> nearestNodes(const NodeSet& nodes, std::span<const double> x,
                                       std::span<const double> y, std::span<const double> z);

// Nodes in one sheet of the layered mesh.
std::int32_t sheetNodes(const model::Domain& domain);

// Highest node of each column, by its node in the first sheet from 0; the lowest of equal ones, 0
// where none lies above -1e10.
std::vector<std::int32_t> columnTops(const model::Domain& domain);

// Take the node that the search found for a point into `node`, which stays as it was for 0, and
// tell on the echo block how far off it is: the nearest node in space, and the top of the nearest
// column in plan.
void find_node(const box_tree::Point& target, std::int32_t found, std::int32_t& node,
               const model::Domain& domain, plot_data::TextBlock& echo);
void find_top_surface_node_from_xy(const box_tree::Point& target, std::int32_t found,
                                   std::int32_t& node, const model::Domain& domain,
                                   plot_data::TextBlock& echo);

// Position of a node, zero for node 0.
box_tree::Point position(const model::Domain& domain, std::int32_t node);

} // namespace observation_compare
