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

// Returns the node nearest to each point. Of several at the same distance it is the one with the
// lowest number. It is 0 if no distance is below 1e20. x, y and z have one value for each point.
std::vector<std::int32_t> nearestNodes(const NodeSet& nodes, std::span<const double> x,
                                       std::span<const double> y, std::span<const double> z);

// Returns the number of nodes in a sheet of the layered mesh.
std::int32_t sheetNodes(const model::Domain& domain);

// Returns the highest node of each column of nodes, in the order of the first sheet. Of several at
// the same elevation it is the one in the lowest sheet. It is 0 if no elevation is above -1e10.
std::vector<std::int32_t> columnTops(const model::Domain& domain);

// Set `node` to the node that the search found, if that is not 0. Write the positions of point and
// node and their difference to the echo block. The first function is for the nearest node in space,
// the second for the top of the nearest column in plan.
void find_node(const box_tree::Point& target, std::int32_t found, std::int32_t& node,
               const model::Domain& domain, plot_data::TextBlock& echo);
void find_top_surface_node_from_xy(const box_tree::Point& target, std::int32_t found,
                                   std::int32_t& node, const model::Domain& domain,
                                   plot_data::TextBlock& echo);

// Returns the coordinates of a node, or zeros for node 0.
box_tree::Point position(const model::Domain& domain, std::int32_t node);

} // namespace observation_compare
