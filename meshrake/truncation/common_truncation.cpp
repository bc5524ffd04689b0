#include "meshrake/truncation/common_truncation.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "meshrake/truncation/truncation_steps.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <limits>

namespace truncation {

using model::Domain;
using model::run;

namespace {

// Returns the lowest global number of the domain's nodes. Their numbers are consecutive.
std::int32_t linkBaseOf(const Domain& domain) {
    std::int32_t base = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t node : domain.linkFromPm)
        if (node > 0) base = std::min(base, node);
    return base;
}

void includeDomainNode(Domain& domain, std::int32_t pmNode, std::int32_t linkBase) {
    const std::int32_t global = domain.linkFromPm[static_cast<std::size_t>(pmNode - 1)];
    if (global < 1) return;
    const std::int32_t node = global - linkBase;
    if (node >= domain.nodeCount)
        error::input_error(
            "Error reading file: " + model::problemFile("coordinates_" + domain.name) +
            "\nA pm node is linked to node " + std::to_string(global) +
            ", which is not in this domain");
    domain.domainNodeIncluded[static_cast<std::size_t>(node)] = 1;
}

// Calls `visit` for each used slot of an element and sets run.meshNodesPerElement to their number.
// If the element visited last has 8, the comparisons with observations assume a mesh of bricks.
template<class Visit>
void forEachNode(const Domain& domain, std::size_t element, Visit visit) {
    const std::int32_t* slots = model::slotsOf(domain, element);
    run.meshNodesPerElement = 0;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        ++run.meshNodesPerElement;
        visit(slots[k]);
    }
}

void includeNode(Domain& domain, std::int32_t pmNode) {
    domain.nodeIncluded[static_cast<std::size_t>(pmNode - 1)] = 1;
}

// Output nodes have the order of the domain's nodes.
void includeFullMesh(Domain& domain) {
    domain.nnTruncated = domain.nodeCount;
    domain.neTruncated = domain.elementCount;
    std::fill(domain.domainNodeIncluded.begin(), domain.domainNodeIncluded.end(), 1);
    std::fill(domain.elementIncluded.begin(), domain.elementIncluded.end(), 1);
    for (std::size_t i = 0; i < domain.linkToPm.size(); ++i)
        domain.nodeRenumber[static_cast<std::size_t>(domain.linkToPm[i] - 1)] =
            static_cast<std::int32_t>(i + 1);
    for (std::size_t e = 0; e < domain.elementIncluded.size(); ++e)
        forEachNode(domain, e, [&](std::int32_t pmNode) { includeNode(domain, pmNode); });
}

// Output nodes have the order of pm's nodes.
void includeTruncated(Domain& domain, const Domain& pm) {
    const std::int32_t linkBase = linkBaseOf(domain);
    const std::int32_t layerElements = layerSize(domain, pm.elementCount);
    for (std::size_t e = 0; e < domain.elementIncluded.size(); ++e) {
        if (!isInsideTruncation(domain, pm, e, layerElements)) continue;
        domain.elementIncluded[e] = 1;
        forEachNode(domain, e, [&](std::int32_t pmNode) {
            includeNode(domain, pmNode);
            includeDomainNode(domain, pmNode, linkBase);
        });
    }
    domain.neTruncated = countIncluded(domain.elementIncluded);
    // Without an included element, meshNodesPerElement is that of the last element of the list.
    if (domain.neTruncated == 0 && domain.elementCount > 0)
        forEachNode(domain, domain.elementIncluded.size() - 1, [](std::int32_t) {});
    domain.nnTruncated = 0;
    for (std::size_t i = 0; i < domain.nodeIncluded.size(); ++i)
        if (domain.nodeIncluded[i]) domain.nodeRenumber[i] = ++domain.nnTruncated;
}

} // namespace

void commonTruncate(Domain& domain, const Domain& pm) {
    const stages::Scope stage(stages::Stage::truncation);
    const std::string arrays = "common node mesh truncation arrays";
    ArrayHelpers::allocateArray(domain.nodeIncluded, pm.nodeCount, arrays);
    ArrayHelpers::allocateArray(domain.domainNodeIncluded, domain.nodeCount, arrays);
    ArrayHelpers::allocateArray(domain.elementIncluded, domain.elementCount, arrays);
    ArrayHelpers::allocateArray(domain.nodeRenumber, pm.nodeCount, arrays);
    const bool wholeMesh = !domain.truncateEnabled && !domain.truncateByLayerEnabled;
    if (wholeMesh)
        includeFullMesh(domain);
    else
        includeTruncated(domain, pm);
    reportTruncation(domain, wholeMesh);
    domain.outputIsPacked = true;
}

} // namespace truncation
