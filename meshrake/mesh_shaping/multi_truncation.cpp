#include "meshrake/mesh_shaping/multi_truncation.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/ArrayHelpers.hpp"
#include "tvncommon/error.hpp"

#include <algorithm>

namespace mesh_shaping {

using model::Domain;
using model::run;

namespace {

const std::int32_t* slotsOf(const Domain& domain, std::size_t element) {
    return domain.elementNodes.data() + element * static_cast<std::size_t>(domain.nodesPerElement);
}

// Domain node at a pm node, 0 where the domain has none.
std::int32_t domainNode(const Domain& domain, std::int32_t pmNode) {
    if (domain.tag == model::tags::pm) return pmNode;
    const std::int32_t global = domain.linkFromPm[static_cast<std::size_t>(pmNode - 1)];
    return global > 0 ? global - domain.nodeOffset : 0;
}

void includeNode(Domain& domain, std::int32_t node) {
    domain.nodeIncluded[static_cast<std::size_t>(node - 1)] = 1;
}

// Marks the nodes of an element and tells whether all of its used slots have one.
bool includeNodes(Domain& domain, std::size_t element) {
    const std::int32_t* slots = slotsOf(domain, element);
    bool complete = true;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        const std::int32_t node = domainNode(domain, slots[k]);
        if (node > 0)
            includeNode(domain, node);
        else
            complete = false;
    }
    return complete;
}

void keepWholeMesh(Domain& domain) {
    const bool isPm = domain.tag == model::tags::pm;
    const auto elements = static_cast<std::size_t>(domain.elementCount);
    for (std::size_t e = 0; e < elements; ++e)
        domain.elementIncluded[e] = includeNodes(domain, e) || isPm;
}

struct Point {
    double x = 0, y = 0, z = 0;
};

// Mean of the pm nodes of the element. An element without any compares false with all bounds.
Point centroid(const Domain& domain, const Domain& pm, std::size_t element) {
    const std::int32_t* slots = slotsOf(domain, element);
    Point sum;
    double count = 0;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        const auto node = static_cast<std::size_t>(slots[k] - 1);
        sum.x += pm.x[node];
        sum.y += pm.y[node];
        sum.z += pm.z[node];
        count += 1;
    }
    return {sum.x / count, sum.y / count, sum.z / count};
}

bool within(double value, const double* bounds) {
    return bounds[0] <= value && value <= bounds[1];
}

void keepPart(Domain& domain, const Domain& pm, std::int32_t layerElements) {
    const double* bounds = domain.truncateBounds.data();
    const auto elements = static_cast<std::size_t>(domain.elementCount);
    for (std::size_t e = 0; e < elements; ++e) {
        const Point c = centroid(domain, pm, e);
        bool included = within(c.x, bounds) && within(c.y, bounds + 2);
        if (domain.truncateEnabled) {
            included = included && within(c.z, bounds + 4);
        } else {
            const std::int32_t layer = static_cast<std::int32_t>(e) / layerElements + 1;
            included =
                included && domain.truncateLayers[0] <= layer && layer <= domain.truncateLayers[1];
        }
        domain.elementIncluded[e] = included;
        if (included) includeNodes(domain, e);
    }
}

void renumber(Domain& domain) {
    domain.neTruncated = static_cast<std::int32_t>(
        std::count(domain.elementIncluded.begin(), domain.elementIncluded.end(), 1));
    domain.nnTruncated = 0;
    for (std::size_t i = 0; i < domain.nodeIncluded.size(); ++i) {
        if (!domain.nodeIncluded[i]) continue;
        const std::size_t pmIndex =
            domain.tag == model::tags::pm ? i : static_cast<std::size_t>(domain.linkToPm[i] - 1);
        domain.nodeRenumber[pmIndex] = ++domain.nnTruncated;
    }
}

void report(const Domain& domain, bool wholeMesh) {
    const std::string nodes = std::to_string(domain.nnTruncated);
    const std::string elements = std::to_string(domain.neTruncated);
    model::write_string("");
    model::write_string("Medium: " + domain.name);
    if (wholeMesh) {
        model::write_string("Full mesh (no truncation)");
        model::write_string("Nodes:    " + nodes);
        model::write_string("Elements: " + elements);
    } else {
        model::write_string("Truncated mesh");
        model::write_string("Nodes:    " + nodes + "/" + std::to_string(domain.nodeCount));
        model::write_string("Elements: " + elements + "/" + std::to_string(domain.elementCount));
    }
}

std::int32_t layerSize(const Domain& domain) {
    return run.sheetCount > 1 ? domain.elementCount / (run.sheetCount - 1) : domain.elementCount;
}

} // namespace

void multiTruncate(Domain& domain, const Domain& pm) {
    const std::string arrays = domain.name + " truncated mesh arrays";
    ArrayHelpers::allocateArray(domain.nodeIncluded, domain.nodeCount, arrays);
    ArrayHelpers::allocateArray(domain.elementIncluded, domain.elementCount, arrays);
    ArrayHelpers::allocateArray(domain.nodeRenumber, pm.nodeCount, arrays);
    const bool wholeMesh = !domain.truncateEnabled && !domain.truncateByLayerEnabled;
    if (wholeMesh) {
        keepWholeMesh(domain);
        renumber(domain);
        // A node behind a cutoff wall belongs to no element as it stands.
        if (run.wallsPresent) domain.nnTruncated = domain.nodeCount;
    } else {
        const std::int32_t layerElements = layerSize(domain);
        if (!domain.truncateEnabled && layerElements == 0 && domain.elementCount > 0)
            error::input_error("Truncation of the " + domain.name +
                               " domain by layer: it has fewer elements than layers");
        keepPart(domain, pm, layerElements);
        renumber(domain);
        domain.truncateEnabled = true;
    }
    report(domain, wholeMesh);
}

} // namespace mesh_shaping
