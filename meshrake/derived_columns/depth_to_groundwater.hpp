#pragma once

#include <cstdint>
#include <span>

// Depth to the water table in a layered mesh. The nodes are numbered sheet by sheet from the bottom
// up, with nodeCount / sheetCount nodes in each sheet. Node numbers in a column differ by multiples
// of this. If nodeCount is not a multiple of sheetCount, the remaining nodes follow the top sheet.
//
// `z` (elevations), `head`, `pressureHead` and `depth` have nodeCount values in the length unit.
// The pressure head is the head minus the elevation. A node is unsaturated if its pressure head is
// below 0 and saturated otherwise. NaN counts as saturated, but a search for a saturated node skips
// it.
//
// A crossing is a saturated node with an unsaturated node above it. The elevation of the water
// table there is the head of the saturated node. With `interpolate` it is the elevation between the
// two nodes where the pressure head, interpolated linearly, is 0.
//
// Fewer than one sheet, or fewer nodes than sheets, ends the run. A mesh without nodes has no
// depths.
namespace depth_to_groundwater {

// Sets the depth of each node: its elevation minus that of the water table, which is negative below
// the water table. The water table is at the nearest crossing of the node's column, below an
// unsaturated node and above a saturated node. Without such a crossing it is at the head of the
// bottom node or, for a saturated node, of the top node. The latter also holds for each saturated
// node after the top sheet.
void depth2gwtDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                     std::span<const double> z, std::span<const double> head,
                     std::span<double> depth);

// Sets the depth of each column's lowest crossing below its top node, the same value in all sheets.
// Without a crossing the water table is at the head of the bottom node if the top node is
// unsaturated, otherwise at the top node. Nodes after the top sheet get 0.
void depth2gwt2dDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                       std::span<const double> z, std::span<const double> head,
                       std::span<double> depth);

// The same for one node, counted from 1, and for the column of one node. Also set `waterTable` to
// the elevation of the water table.
void depth2gwtNode(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                   bool interpolate, std::span<const double> z,
                   std::span<const double> pressureHead, double& depth, double& waterTable);
void depth2gwtNodeBottomUp(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                           bool interpolate, std::span<const double> z,
                           std::span<const double> pressureHead, double& depth, double& waterTable);

} // namespace depth_to_groundwater
