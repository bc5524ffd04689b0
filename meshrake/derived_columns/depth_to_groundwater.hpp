#pragma once

#include <cstdint>
#include <span>

// Depth to the water table in a layered mesh. The nodes are numbered sheet by sheet from the bottom
// up, nodeCount / sheetCount in a sheet, so that the nodes of one column lie that far apart.
//
// `z` (elevations), `head` and `depth` hold `nodeCount` values, in length units; `pressureHead` is
// head less elevation. A node with a pressure head below 0 is unsaturated and any other, also one
// that is no number, is saturated. The water table lies where a saturated node has an unsaturated
// one above it: at the head of the saturated node or, with `interpolate`, where the pressure head
// between the two is 0. A node count that makes no whole number of sheets leaves nodes over at the
// end. Fewer than one sheet, or more sheets than nodes where there are any, ends the run.
namespace depth_to_groundwater {

// For each node its height above the crossing nearest to it: unsaturated nodes look down, saturated
// ones up, and nodes below the water table get negative values. Where there is no crossing the head
// of the column's bottom node or top node stands for the water table. A saturated node left over
// has no crossing above it.
void depth2gwtDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                     std::span<const double> z, std::span<const double> head,
                     std::span<double> depth);

// For each column the depth of its lowest crossing below its top node, the same in all sheets. A
// column without one has the water table at the head of its bottom node if its top is unsaturated
// and otherwise at its top. Nodes left over get 0.
void depth2gwt2dDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                       std::span<const double> z, std::span<const double> head,
                       std::span<double> depth);

// What the two above compute, for one node, counted from 1, or for its column; with the elevation
// of the water table.
void depth2gwtNode(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                   bool interpolate, std::span<const double> z,
                   std::span<const double> pressureHead, double& depth, double& waterTable);
void depth2gwtNodeBottomUp(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                           bool interpolate, std::span<const double> z,
                           std::span<const double> pressureHead, double& depth, double& waterTable);

} // namespace depth_to_groundwater
