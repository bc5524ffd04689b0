#include "meshrake/truncation/multi_truncation.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "meshrake/truncation/truncation_steps.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"

#include <algorithm>

namespace truncation {

using model::Domain;
using model::run;

namespace {

// Returns the domain's node at a pm node, 0 if it has none there.
std::int32_t domainNode(const Domain& domain, std::int32_t pmNode) {
    if (domain.tag == model::tags::pm) return pmNode;
    const std::int32_t global = domain.linkFromPm[static_cast<std::size_t>(pmNode - 1)];
    return global > 0 ? global - domain.nodeOffset : 0;
}

// Includes the nodes of an element. Returns whether every used slot has a node of the domain.
bool includeNodes(Domain& domain, std::size_t element) {
    const std::int32_t* slots = model::slotsOf(domain, element);
    bool complete = true;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        const std::int32_t node = domainNode(domain, slots[k]);
        if (node > 0)
            domain.nodeIncluded[static_cast<std::size_t>(node - 1)] = 1;
        else
            complete = false;
    }
    return complete;
}

// Includes all nodes that are in an element. Unused slots hold 0 and set marks[0], which saves a
// test of each slot.
void includeNodesOfPm(Domain& pm, const std::string& name) {
    std::vector<std::uint8_t> marks;
    ArrayHelpers::allocateArray(marks, std::int64_t{pm.nodeCount} + 1, name);
    for (const std::int32_t node : pm.elementNodes) marks[static_cast<std::size_t>(node)] = 1;
    std::copy(marks.begin() + 1, marks.end(), pm.nodeIncluded.begin());
}

// Includes every element of pm, also one with unused slots. An element of another domain is
// included if all of its nodes are in that domain.
void includeFullMesh(Domain& domain, const std::string& name) {
    if (domain.tag == model::tags::pm) {
        std::fill(domain.elementIncluded.begin(), domain.elementIncluded.end(), std::uint8_t{1});
        return includeNodesOfPm(domain, name);
    }
    const auto elements = static_cast<std::size_t>(domain.elementCount);
    for (std::size_t e = 0; e < elements; ++e) domain.elementIncluded[e] = includeNodes(domain, e);
}

void includeTruncated(Domain& domain, const Domain& pm) {
    const std::int32_t layerElements = layerSize(domain, domain.elementCount);
    const auto elements = static_cast<std::size_t>(domain.elementCount);
    for (std::size_t e = 0; e < elements; ++e) {
        domain.elementIncluded[e] = isInsideTruncation(domain, pm, e, layerElements);
        if (domain.elementIncluded[e]) includeNodes(domain, e);
    }
}

// Output nodes have the order of the domain's nodes. nodeRenumber is indexed by pm node, as the
// element lists of all domains hold pm nodes.
void renumber(Domain& domain) {
    domain.neTruncated = countIncluded(domain.elementIncluded);
    domain.nnTruncated = 0;
    for (std::size_t i = 0; i < domain.nodeIncluded.size(); ++i) {
        if (!domain.nodeIncluded[i]) continue;
        const std::size_t pmIndex =
            domain.tag == model::tags::pm ? i : static_cast<std::size_t>(domain.linkToPm[i] - 1);
        domain.nodeRenumber[pmIndex] = ++domain.nnTruncated;
    }
}

} // namespace

void multiTruncate(Domain& domain, const Domain& pm) {
    const stages::Scope stage(stages::Stage::truncation);
    const std::string arrays = domain.name + " truncated mesh arrays";
    ArrayHelpers::allocateArray(domain.nodeIncluded, domain.nodeCount, arrays);
    ArrayHelpers::allocateArray(domain.elementIncluded, domain.elementCount, arrays);
    ArrayHelpers::allocateArray(domain.nodeRenumber, pm.nodeCount, arrays);
    const bool wholeMesh = !domain.truncateEnabled && !domain.truncateByLayerEnabled;
    if (wholeMesh)
        includeFullMesh(domain, arrays);
    else
        includeTruncated(domain, pm);
    renumber(domain);
    // With cutoff walls all nodes are written. The additional nodes at a wall are in no element of
    // the list: the connectivity substitutes them for other nodes.
    if (wholeMesh && run.wallsPresent) domain.nnTruncated = domain.nodeCount;
    reportTruncation(domain, wholeMesh);
    domain.outputIsPacked = !wholeMesh;
}

} // namespace truncation
