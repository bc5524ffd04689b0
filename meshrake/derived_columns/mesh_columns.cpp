#include "meshrake/derived_columns/mesh_columns.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

namespace derived_columns {

using model::run;
using plot_data::Packing;

namespace {

// Returns the domain that has the coordinates: pm for a common-node domain.
const Domain& withCoordinates(const Domain& domain) {
    return model::hasOwnNodes(domain) ? domain : *domain.pmReference;
}

// The layer of the current element. Elements are visited in ascending order, so advancing from
// layer to layer avoids a division for each element.
struct Layer {
    std::size_t elements;    // in each layer, above 0
    std::size_t end = 0;     // one past its last element
    std::int32_t number = 0; // from 1; 0 before the first element
};

void advanceTo(Layer& layer, std::size_t element) {
    for (; element >= layer.end; ++layer.number) layer.end += layer.elements;
}

// State before the first element. Ends the run if layers have no elements: advanceTo would not
// return.
Layer beforeFirstLayer(const Domain& domain, const VariableRow& row) {
    const std::int32_t layers = run.sheetCount - 1;
    const std::int32_t n = layers > 0 ? domain.elementCount / layers : 0;
    if (layers < 1 || (n == 0 && domain.neTruncated > 0))
        error::fatalError(std::string(row.columns[0].name) + " of the " + domain.name +
                          " domain: the mesh has no layers of elements\nFile: " +
                          model::problemFile("elements_" + domain.name));
    return {static_cast<std::size_t>(n)};
}

// Generates a value for each entry of the mask that is set, without an array for all values.
// `valueOf` is called with the index of the entry, in ascending order.
template<class T, class ValueOf>
plot_data::ValueGenerator<T> includedValues(const std::vector<std::uint8_t>& included,
                                            ValueOf valueOf) {
    return [&included, valueOf,
            i = std::size_t{0}](std::span<T> buffer) mutable -> std::span<const T> {
        std::size_t n = 0;
        for (; i < included.size() && n < buffer.size(); ++i)
            if (included[i]) buffer[n++] = valueOf(i);
        return buffer.first(n);
    };
}

void writeNumbers(Domain& domain, const VariableRow& row, const OutputVar& var,
                  const plot_data::ValueGenerator<std::int32_t>& next) {
    plot_data::tecplotWriteGeneratedInt4(var.columns[0].varNumber, next, row.columns[0].label,
                                         domain);
}

// The first half of the slots has the lower nodes, the second half the upper nodes in the same
// order.
double thickness(const Domain& domain, std::size_t element) {
    const std::int32_t half = domain.nodesPerElement / 2;
    const std::int32_t* slots = model::slotsOf(domain, element);
    double sum = 0;
    for (std::int32_t j = 0; j < half; ++j) {
        const std::int32_t lower = slots[j];
        const std::int32_t upper = slots[j + half];
        if (lower < 1 || upper < 1)
            error::input_error("Thickness: element " + std::to_string(element + 1) + " of " +
                               model::problemFile("elements_" + domain.name) +
                               " has an unused node slot");
        sum += domain.z[static_cast<std::size_t>(upper - 1)] -
               domain.z[static_cast<std::size_t>(lower - 1)];
    }
    return sum / half;
}

} // namespace

void meshColumnInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.firstExists = var.exists = true;
    if (var.columns.empty()) var.columns = plot_data::columnsOf(row);
    for (std::size_t c = 0; c < var.columns.size(); ++c)
        plot_data::declareColumn(domain, var.columns[c], row.columns[c].name, row.unit);
}

void coordinatesWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    const Packing packing{domain.outputIsPacked, domain.nodeIncluded.data()};
    const Domain& mesh = withCoordinates(domain);
    const std::vector<double>* coordinates[] = {&mesh.x, &mesh.y, &mesh.z};
    for (std::size_t c = 0; c < 3; ++c)
        plot_data::tecplotWriteArrayReal8(var.columns[c].varNumber, mesh.nodeCount,
                                          coordinates[c]->data(), packing, row.columns[c].label,
                                          domain);
}

void nodeNumberInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!run.wallsPresent) meshColumnInit(domain, row, var);
}

void write3DNodeNumber(Domain& domain, const VariableRow& row, OutputVar& var) {
    // nodeIncluded is indexed by pm node in a common-node domain, otherwise by the domain's node.
    const std::int32_t* links = model::hasOwnNodes(domain) ? domain.linkToPm.data() : nullptr;
    const auto number = [links](std::size_t i) {
        return links ? links[i] : static_cast<std::int32_t>(i + 1);
    };
    writeNumbers(domain, row, var, includedValues<std::int32_t>(domain.nodeIncluded, number));
}

void writeLayerNumber(Domain& domain, const VariableRow& row, OutputVar& var) {
    const auto number = [layer = beforeFirstLayer(domain, row)](std::size_t e) mutable {
        advanceTo(layer, e);
        return layer.number;
    };
    writeNumbers(domain, row, var, includedValues<std::int32_t>(domain.elementIncluded, number));
}

void writeColumnNumber(Domain& domain, const VariableRow& row, OutputVar& var) {
    const auto number = [layer = beforeFirstLayer(domain, row)](std::size_t e) mutable {
        advanceTo(layer, e);
        return static_cast<std::int32_t>(layer.elements - (layer.end - e)) + 1;
    };
    writeNumbers(domain, row, var, includedValues<std::int32_t>(domain.elementIncluded, number));
}

void writeElementThickness(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (domain.nodesPerElement < 2 && domain.elementCount > 0)
        error::fatalError("Thickness of the " + domain.name +
                          " domain: elements of one node\nFile: " +
                          model::problemFile("elements_" + domain.name));
    const auto ofElement = [&domain](std::size_t e) { return thickness(domain, e); };
    plot_data::tecplotWriteGeneratedReal8(var.columns[0].varNumber,
                                          includedValues<double>(domain.elementIncluded, ofElement),
                                          row.columns[0].label, domain);
}

void computeDepthBelowTop(const Domain& pm, std::size_t sheetNodes, std::size_t sheets,
                          std::vector<double>& depth) {
    const std::size_t topSheet = (sheets - 1) * sheetNodes;
    for (std::size_t k = 0; k < topSheet; k += sheetNodes)
        for (std::size_t i = 0; i < sheetNodes; ++i)
            depth[k + i] = pm.z[topSheet + i] - pm.z[k + i];
}

void depth2SurfInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!run.plotDepthBelowSurface) return;
    if (var.columns.empty()) var.columns = plot_data::columnsOf(row);
    std::vector<double>& depth = var.columns[0].real8;
    if (depth.empty()) {
        ArrayHelpers::allocateArray(depth, domain.nodeCount, row.arrayText);
        if (run.sheetCount < 1)
            error::fatalError("Depth2Surf: the mesh has no node sheets\nFile: " +
                              model::problemFile("coordinates_pm"));
        const auto sheets = static_cast<std::size_t>(run.sheetCount);
        computeDepthBelowTop(domain, depth.size() / sheets, sheets, depth);
    }
    meshColumnInit(domain, row, var);
}

void apertureWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    const Packing packing{domain.outputIsPacked, domain.elementIncluded.data()};
    plot_data::tecplotWriteArrayReal8(var.columns[0].varNumber, domain.elementCount,
                                      domain.fractureAperture.data(), packing, row.columns[0].label,
                                      domain);
}

} // namespace derived_columns
