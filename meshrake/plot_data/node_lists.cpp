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

// Output numbers of a multi-node domain's own nodes. Its quadrilaterals use these numbers instead
// of `nodeRenumber`, because several of its nodes share one pm node at a cutoff wall.
struct OwnNodes {
    bool inUse = false;
    std::vector<std::int32_t> numbers; // domain node to output node, empty: the same number
};

OwnNodes ownNodesOf(const Domain& domain) {
    OwnNodes own;
    own.inUse =
        domain.tag != model::tags::pm && model::hasOwnNodes(domain) && domain.nodesPerElement == 4;
    if (!own.inUse || !domain.outputIsPacked) return own;
    ArrayHelpers::allocateArray(own.numbers, domain.nodeCount,
                                "Tecplot element connectivity array");
    std::int32_t written = 0;
    for (std::size_t i = 0; i < own.numbers.size(); ++i)
        if (domain.nodeIncluded[i]) own.numbers[i] = ++written;
    return own;
}

std::int32_t outputNumber(const OwnNodes& own, std::int32_t node) {
    return own.numbers.empty() ? node : own.numbers[static_cast<std::size_t>(node - 1)];
}

// Returns the node that replaces `node` in the wall layer of the element, or `node` itself.
std::int32_t wallReplacement(const Domain& domain, const OwnNodes& own, std::int32_t node,
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
    const auto replacement = static_cast<std::int32_t>(other);
    return outputNumber(own, replacement) > 0 ? replacement : node;
}

// Returns the output number of the domain's node at a pm node, 0 if it has none.
std::int32_t ownNode(const Domain& domain, const OwnNodes& own, std::int32_t pmNode,
                     std::size_t element) {
    if (pmNode < 1) return 0;
    const std::int32_t global = domain.linkFromPm[static_cast<std::size_t>(pmNode - 1)];
    if (global < 1) return 0;
    const std::int32_t node = global - domain.nodeOffset;
    return outputNumber(own, wallReplacement(domain, own, node, element));
}

std::int32_t renumbered(const Domain& domain, std::int32_t pmNode) {
    return pmNode < 1 ? 0 : domain.nodeRenumber[static_cast<std::size_t>(pmNode - 1)];
}

// Puts the output node numbers of one element into `nodes`, one for each slot of the pattern.
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

// True if `elementNodes` can be written without a change: it has all elements and all nodes of pm
// with the same numbers, in the order of the pattern, and no triangle.
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
