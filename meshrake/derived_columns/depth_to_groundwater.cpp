#include "meshrake/derived_columns/depth_to_groundwater.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace depth_to_groundwater {

namespace {

struct Mesh {
    std::size_t nodeCount;
    std::size_t sheetCount;
    std::size_t sheetNodes;
    bool interpolate;
    std::span<const double> z;
    std::span<const double> head;
};

std::size_t nodesPerSheet(std::int32_t nodeCount, std::int32_t sheetCount) {
    if (sheetCount < 1 || nodeCount < sheetCount)
        error::fatalError("Depth to groundwater: division by zero, " + std::to_string(nodeCount) +
                          " nodes in " + std::to_string(sheetCount) + " sheets.");
    return static_cast<std::size_t>(nodeCount / sheetCount);
}

Mesh meshOf(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
            std::span<const double> z, std::span<const double> head) {
    return {.nodeCount = static_cast<std::size_t>(nodeCount),
            .sheetCount = static_cast<std::size_t>(sheetCount),
            .sheetNodes = nodesPerSheet(nodeCount, sheetCount),
            .interpolate = interpolate,
            .z = z,
            .head = head};
}

// Where a result needs the head of a node, it is pressure head plus elevation, as in the functions
// for one node, which have no heads. This can differ from `head` in the last digit.
double pressureHead(const Mesh& mesh, std::size_t node) {
    return mesh.head[node] - mesh.z[node];
}

// Elevation of the water table between a saturated node and the unsaturated node above it.
double crossing(bool interpolate, double zLow, double pLow, double zUp, double pUp) {
    if (!interpolate) return zLow + pLow;
    return zLow - (pLow / (pLow - pUp)) * (zLow - zUp);
}

// A search from each node would take up to sheetCount steps, each in another part of the memory.
// Both sweeps read whole sheets in the order of the memory instead. `waterTable` has an entry for
// each column: the elevation that a search from the node of the current sheet would find.

// Sets the depths of the unsaturated nodes. Their search goes down and ends at the first node with
// a pressure head of 0 or more, or at the bottom. NaN does not end it.
void sweepUp(const Mesh& mesh, std::span<double> waterTable, std::span<double> depth) {
    for (std::size_t begin = 0; begin < mesh.nodeCount; begin += mesh.sheetNodes) {
        const std::size_t end = std::min(begin + mesh.sheetNodes, mesh.nodeCount);
        for (std::size_t i = begin; i < end; ++i) {
            double& wt = waterTable[i - begin];
            const double p = pressureHead(mesh, i);
            if (begin == 0) {
                wt = p + mesh.z[i];
            } else if (!(p >= 0)) {
                const std::size_t below = i - mesh.sheetNodes;
                const double pBelow = pressureHead(mesh, below);
                if (pBelow >= 0)
                    wt = crossing(mesh.interpolate, mesh.z[below], pBelow, mesh.z[i], p);
            }
            if (p < 0) depth[i] = mesh.z[i] - wt;
        }
    }
}

// Sets the depths of the saturated nodes. Their search goes up and ends at the first unsaturated
// node, or at the top sheet. Nodes after the top sheet have no node above them and use the head of
// the top node.
void sweepDown(const Mesh& mesh, std::span<double> waterTable, std::span<double> depth) {
    for (std::size_t s = (mesh.nodeCount - 1) / mesh.sheetNodes + 1; s-- > 0;) {
        const std::size_t begin = s * mesh.sheetNodes;
        const std::size_t end = std::min(begin + mesh.sheetNodes, mesh.nodeCount);
        for (std::size_t i = begin; i < end; ++i) {
            const double p = pressureHead(mesh, i);
            if (p < 0) continue;
            double& wt = waterTable[i - begin];
            if (s + 1 >= mesh.sheetCount) {
                const std::size_t top = (mesh.sheetCount - 1) * mesh.sheetNodes + i - begin;
                wt = pressureHead(mesh, top) + mesh.z[top];
            } else {
                const std::size_t above = i + mesh.sheetNodes;
                const double pAbove = pressureHead(mesh, above);
                if (pAbove < 0)
                    wt = crossing(mesh.interpolate, mesh.z[i], p, mesh.z[above], pAbove);
            }
            depth[i] = mesh.z[i] - wt;
        }
    }
}

// For each column with a crossing: sets `waterTable` to the elevation of the lowest one and `found`
// to 1. Ends when no column is left without a crossing.
void lowestCrossings(const Mesh& mesh, std::span<char> found, std::span<double> waterTable) {
    std::size_t searching = mesh.sheetNodes;
    for (std::size_t k = 1; k < mesh.sheetCount && searching > 0; ++k) {
        for (std::size_t c = 0; c < mesh.sheetNodes; ++c) {
            if (found[c]) continue;
            const std::size_t up = k * mesh.sheetNodes + c;
            const std::size_t low = up - mesh.sheetNodes;
            const double pUp = pressureHead(mesh, up);
            const double pLow = pressureHead(mesh, low);
            if (!(pLow >= 0 && pUp < 0)) continue;
            waterTable[c] = crossing(mesh.interpolate, mesh.z[low], pLow, mesh.z[up], pUp);
            found[c] = 1;
            --searching;
        }
    }
}

} // namespace

void depth2gwtDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                     std::span<const double> z, std::span<const double> head,
                     std::span<double> depth) {
    if (nodeCount < 1) return;
    const Mesh mesh = meshOf(nodeCount, sheetCount, interpolate, z, head);
    std::vector<double> waterTable;
    ArrayHelpers::allocateArray(waterTable, nodeCount / sheetCount,
                                "depth to groundwater work array");
    sweepUp(mesh, waterTable, depth);
    sweepDown(mesh, waterTable, depth);
}

void depth2gwt2dDomain(std::int32_t nodeCount, std::int32_t sheetCount, bool interpolate,
                       std::span<const double> z, std::span<const double> head,
                       std::span<double> depth) {
    if (nodeCount < 1) return;
    const Mesh mesh = meshOf(nodeCount, sheetCount, interpolate, z, head);
    std::vector<char> found;
    ArrayHelpers::allocateArray(found, nodeCount / sheetCount,
                                "depth to groundwater 2D work array");
    // The bottom sheet of `depth` has the elevations of the water table until they are used.
    const std::span<double> bottomSheet = depth.first(mesh.sheetNodes);
    lowestCrossings(mesh, found, bottomSheet);
    for (std::size_t bottom = 0; bottom < mesh.sheetNodes; ++bottom) {
        const std::size_t top = bottom + (mesh.sheetCount - 1) * mesh.sheetNodes;
        double wt = mesh.z[top];
        if (found[bottom])
            wt = depth[bottom];
        else if (mesh.sheetCount > 1 && pressureHead(mesh, top) < 0)
            wt = pressureHead(mesh, bottom) + mesh.z[bottom];
        depth[bottom] = mesh.z[top] - wt;
    }
    for (std::size_t s = 1; s < mesh.sheetCount; ++s)
        std::ranges::copy(bottomSheet, depth.subspan(s * mesh.sheetNodes).begin());
    std::ranges::fill(depth.first(mesh.nodeCount).subspan(mesh.sheetCount * mesh.sheetNodes), 0.0);
}

void depth2gwtNode(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                   bool interpolate, std::span<const double> z,
                   std::span<const double> pressureHead, double& depth, double& waterTable) {
    const std::size_t sheetNodes = nodesPerSheet(nodeCount, sheetCount);
    const std::size_t sheetsEnd = sheetNodes * static_cast<std::size_t>(sheetCount);
    const std::size_t i = static_cast<std::size_t>(node) - 1;
    const auto between = [&](std::size_t low) {
        const std::size_t up = low + sheetNodes;
        return crossing(interpolate, z[low], pressureHead[low], z[up], pressureHead[up]);
    };
    std::size_t j = i;
    if (pressureHead[i] < 0) {
        while (j >= sheetNodes && !(pressureHead[j] >= 0)) j -= sheetNodes;
        waterTable = pressureHead[j] >= 0 ? between(j) : pressureHead[j] + z[j];
    } else if (i >= sheetsEnd) {
        const std::size_t top = i % sheetNodes + sheetsEnd - sheetNodes;
        waterTable = pressureHead[top] + z[top];
    } else {
        while (j + sheetNodes < sheetsEnd && !(pressureHead[j] < 0)) j += sheetNodes;
        waterTable = pressureHead[j] < 0 ? between(j - sheetNodes) : pressureHead[j] + z[j];
    }
    depth = z[i] - waterTable;
}

void depth2gwtNodeBottomUp(std::int32_t node, std::int32_t nodeCount, std::int32_t sheetCount,
                           bool interpolate, std::span<const double> z,
                           std::span<const double> pressureHead, double& depth,
                           double& waterTable) {
    const std::size_t sheetNodes = nodesPerSheet(nodeCount, sheetCount);
    const std::size_t bottom = (static_cast<std::size_t>(node) - 1) % sheetNodes;
    const std::size_t top = bottom + sheetNodes * static_cast<std::size_t>(sheetCount - 1);
    std::size_t low = bottom;
    while (low < top && !(pressureHead[low] >= 0 && pressureHead[low + sheetNodes] < 0))
        low += sheetNodes;
    if (low < top)
        waterTable = crossing(interpolate, z[low], pressureHead[low], z[low + sheetNodes],
                              pressureHead[low + sheetNodes]);
    else if (sheetCount > 1 && pressureHead[top] < 0)
        waterTable = pressureHead[bottom] + z[bottom];
    else
        waterTable = z[top];
    depth = z[top] - waterTable;
}

} // namespace depth_to_groundwater
