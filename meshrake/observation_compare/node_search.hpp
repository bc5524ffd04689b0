#pragma once

#include "meshrake/model/domain.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace observation_compare {

// The nodes to search, and their distance.
struct NodeSet {
    const model::Domain& domain; // pm or a multi-node domain
    std::int32_t count;          // nodes 1 to count
    bool inPlan;                 // the distance ignores z
};

// Returns the node nearest to each point, of several the one with the lowest number; 0 if no
// distance is below 1e20. x, y and z of the points have the same length.
std::vector<std::int32_t> nearestNodes(const NodeSet& nodes, std::span<const double> x,
                                       std::span<const double> y, std::span<const double> z);

// Number of nodes of one sheet of the layered mesh.
std::int32_t sheetNodes(const model::Domain& domain);

// Highest node of each column of nodes, in the order of the first sheet; of several the one in the
// lowest sheet, 0 if none is above -1e10.
std::vector<std::int32_t> columnTops(const model::Domain& domain);

// Set `node` to the node that the search found, if that is not 0, and write its distance from the
// point to the echo block. The first is for the nearest node in space, the second for the top of
// the nearest column in plan.
void find_node(const box_tree::Point& target, std::int32_t found, std::int32_t& node,
               const model::Domain& domain, plot_data::TextBlock& echo);
void find_top_surface_node_from_xy(const box_tree::Point& target, std::int32_t found,
                                   std::int32_t& node, const model::Domain& domain,
                                   plot_data::TextBlock& echo);

// Coordinates of a node; zeros for node 0.
box_tree::Point position(const model::Domain& domain, std::int32_t node);

} // namespace observation_compare
