#include "meshrake/plot_data/node_lists.hpp"

#include "meshrake/model/cell_patterns.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"

#include <array>

namespace plot_data {

using model::CellPattern;
using model::Domain;
using model::run;

namespace {

// Quadrilaterals of a domain with nodes of its own go by its own links, since at a cutoff wall
// several of its nodes lie on one pm node.
struct OwnNodes {
    bool inUse = false;
    std::vector<std::int32_t> place; // domain node to node of the output, empty: the same number
};

OwnNodes ownNodesOf(const Domain& domain) {
    OwnNodes own;
    own.inUse =
        domain.tag != model::tags::pm && model::hasOwnNodes(domain) && domain.nodesPerElement == 4;
    if (!own.inUse || !domain.outputIsPacked) return own;
    ArrayHelpers::allocateArray(own.place, domain.nodeCount, "Tecplot element connectivity array");
    std::int32_t written = 0;
    for (std::size_t i = 0; i < own.place.size(); ++i)
        if (domain.nodeIncluded[i]) own.place[i] = ++written;
    return own;
}

std::int32_t placeOf(const OwnNodes& own, std::int32_t node) {
    return own.place.empty() ? node : own.place[static_cast<std::size_t>(node - 1)];
}

// The node that stands for `node` in an element of this wall layer.
std::int32_t behindWall(const Domain& domain, const OwnNodes& own, std::int32_t node,
                        std::size_t element) {
    if (!run.wallsPresent || domain.tag != model::tags::olf) return node;
    const auto index = static_cast<std::size_t>(node - 1);
    const std::int32_t layer = run.wallElementLayer[element];
    if (run.wallNodeFlag.empty() || run.wallNodeFlag[index] == 0) return node;
    if (layer < 1 || layer > run.wallLayers) return node;
    const auto nodes = static_cast<std::size_t>(domain.nodeCount);
    const std::int64_t other =
        std::int64_t{run.wallNodeTable[static_cast<std::size_t>(layer - 1) * nodes + index]} -
        domain.nodeOffset;
    if (other < 1 || other > domain.nodeCount) return node;
    const auto behind = static_cast<std::int32_t>(other);
    return placeOf(own, behind) > 0 ? behind : node;
}

std::int32_t ownNode(const Domain& domain, const OwnNodes& own, std::int32_t pmNode,
                     std::size_t element) {
    if (pmNode < 1) return 0;
    const std::int32_t global = domain.linkFromPm[static_cast<std::size_t>(pmNode - 1)];
    if (global < 1) return 0;
    const std::int32_t node = global - domain.nodeOffset;
    return placeOf(own, behindWall(domain, own, node, element));
}

std::int32_t renumbered(const Domain& domain, std::int32_t pmNode) {
    return pmNode < 1 ? 0 : domain.nodeRenumber[static_cast<std::size_t>(pmNode - 1)];
}

// Output node numbers of one element into `nodes`, as many as the pattern has.
void tecplotElemConnectivity(const Domain& domain, const OwnNodes& own, const CellPattern& pattern,
                             std::size_t element, std::int32_t* nodes) {
    const std::int32_t* slots = model::slotsOf(domain, element);
    const bool triangle = model::isTriangle(domain, slots);
    if (own.inUse && !triangle) {
        for (int k = 0; k < 4; ++k) nodes[k] = ownNode(domain, own, slots[k], element);
        return;
    }
    const CellPattern& used = triangle ? model::cellPattern(3) : pattern;
    for (std::size_t k = 0; k < static_cast<std::size_t>(used.length); ++k)
        nodes[k] = renumbered(domain, slots[used.slots[k]]);
}

// True when the file takes the elements as they stand: all of them, with all nodes of pm, and no
// triangle among them.
bool isWholeMesh(const Domain& domain, const CellPattern& pattern) {
    return domain.tag == model::tags::pm && pattern.length == domain.nodesPerElement &&
           pattern.length != 4 && domain.neTruncated == domain.elementCount &&
           !domain.nodeRenumber.empty() && domain.nodeRenumber.back() == domain.nodeCount;
}

} // namespace

void writeNodeLists(const Domain& domain, const WriteNodeLists& write) {
    const CellPattern& pattern = model::cellPattern(domain.nodesPerElement);
    if (pattern.length == 0) return;
    if (isWholeMesh(domain, pattern))
        return write(domain.elementNodes.data(), domain.elementCount, pattern.length);
    const OwnNodes own = ownNodesOf(domain);
    // A piece stays in the cache until it is in the file.
    constexpr std::int64_t listsPerPiece = 4096;
    std::array<std::int32_t, listsPerPiece * model::maximumCellSlots> nodes;
    std::int64_t lists = 0;
    const auto count = static_cast<std::size_t>(domain.elementCount);
    for (std::size_t e = 0; e < count; ++e) {
        if (!domain.elementIncluded[e]) continue;
        tecplotElemConnectivity(domain, own, pattern, e, nodes.data() + lists * pattern.length);
        if (++lists < listsPerPiece) continue;
        write(nodes.data(), lists, pattern.length);
        lists = 0;
    }
    if (lists > 0) write(nodes.data(), lists, pattern.length);
}

} // namespace plot_data
