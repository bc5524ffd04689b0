#include "meshrake/truncation/truncation_steps.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <array>

namespace truncation {

using model::Domain;
using model::run;

namespace {

bool within(double value, const double* bounds) {
    return bounds[0] <= value && value <= bounds[1];
}

// Returns the mean position of the element's pm nodes. Without nodes it is NaN, which is in no
// range.
std::array<double, 3> centroid(const Domain& domain, const Domain& pm, std::size_t element) {
    const std::int32_t* slots = model::slotsOf(domain, element);
    std::array<double, 3> sum{};
    double count = 0;
    for (std::int32_t k = 0; k < domain.nodesPerElement; ++k) {
        if (slots[k] < 1) continue;
        const auto node = static_cast<std::size_t>(slots[k] - 1);
        sum[0] += pm.x[node];
        sum[1] += pm.y[node];
        sum[2] += pm.z[node];
        count += 1;
    }
    return {sum[0] / count, sum[1] / count, sum[2] / count};
}

} // namespace

std::int32_t layerSize(const Domain& domain, std::int32_t elementCount) {
    const std::int32_t n = run.sheetCount > 1 ? elementCount / (run.sheetCount - 1) : elementCount;
    // Only a truncation by layer divides by it. If both are requested, the layers have no effect.
    if (n == 0 && domain.elementCount > 0 && !domain.truncateEnabled &&
        domain.truncateByLayerEnabled)
        error::input_error("Truncation of the " + domain.name +
                           " domain by layer: the mesh has fewer elements than layers\nFile: " +
                           model::problemFile("elements_" + domain.name));
    return n;
}

bool isInsideTruncation(const Domain& domain, const Domain& pm, std::size_t element,
                        std::int32_t layerElements) {
    const double* bounds = domain.truncateBounds.data();
    const auto [x, y, z] = centroid(domain, pm, element);
    if (!within(x, bounds) || !within(y, bounds + 2)) return false;
    if (domain.truncateEnabled) return within(z, bounds + 4);
    const std::int32_t layer = static_cast<std::int32_t>(element) / layerElements + 1;
    return domain.truncateLayers[0] <= layer && layer <= domain.truncateLayers[1];
}

std::int32_t countIncluded(const std::vector<std::uint8_t>& included) {
    return static_cast<std::int32_t>(std::count(included.begin(), included.end(), 1));
}

void reportTruncation(const Domain& domain, bool wholeMesh) {
    const std::string nodes = "Nodes:    " + std::to_string(domain.nnTruncated);
    const std::string elements = "Elements: " + std::to_string(domain.neTruncated);
    model::write_string("");
    model::write_string("Medium: " + domain.name);
    model::write_string(wholeMesh ? "Full mesh (no truncation)" : "Truncated mesh");
    model::write_string(wholeMesh ? nodes : nodes + "/" + std::to_string(domain.nodeCount));
    model::write_string(wholeMesh ? elements
                                  : elements + "/" + std::to_string(domain.elementCount));
}

} // namespace truncation
