#pragma once

#include <cstdint>
#include <span>

// Depth to the water table in a layered mesh. The nodes are numbered sheet by sheet from the bottom
// up, with nodeCount / sheetCount nodes in each sheet. Node numbers in a column differ by multiples
// of this.
//
// `z` (elevations), `head`, `pressureHead` and `depth` have nodeCount values in the length unit;
// the pressure head is the head minus the elevation. A node is unsaturated if its pressure head is
// below 0 and saturated otherwise. NaN counts as saturated, but no search for a saturated node ends
// at it. A crossing is a saturated node with an unsaturated node above it. The water table is
// there: at the head of the saturated node or, with `interpolate`, where the pressure head, linear
// between the two nodes, is 0. If nodeCount is not a multiple of sheetCount, the remaining nodes
// follow the top sheet. Fewer than one sheet, or fewer nodes than sheets, ends the run; a mesh
// without nodes has no depths.
namespace depth_to_groundwater {

// For each node, its height above the nearest crossing of its column: below an unsaturated node,
// above a saturated node. The depth of a node below the water table is negative. Without a crossing
// the water table is at the head of the bottom node (unsaturated node) or of the top node
// (saturated node, and any saturated node after the top sheet).
void depth2gwtDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                     std::span<const double> z, std::span<const double> head,
                     std::span<double> depth);

// For each column, the depth of its lowest crossing below its top node, the same value in all
// sheets. Without a crossing the water table is at the head of the bottom node if the top node is
// unsaturated, otherwise at the top node. Nodes after the top sheet get 0.
void depth2gwt2dDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                       std::span<const double> z, std::span<const double> head,
                       std::span<double> depth);

// The same for one node, counted from 1, and for the column of one node. `waterTable` is the
// elevation of the water table.
void depth2gwtNode(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                   bool interpolate, std::span<const double> z,
                   std::span<const double> pressureHead, double& depth, double& waterTable);
void depth2gwtNodeBottomUp(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                           bool interpolate, std::span<const double> z,
                           std::span<const double> pressureHead, double& depth, double& waterTable);

} // namespace depth_to_groundwater
