#include "meshrake/derived_columns/depth_to_groundwater_columns.hpp"

#include "meshrake/derived_columns/depth_to_groundwater.hpp"
#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>

namespace derived_columns {

using model::Domain;
using model::OutputVar;
using model::run;
using plot_data::VariableRow;

namespace {

using DepthFunction = decltype(&depth_to_groundwater::depth2gwtDomain);

void checkSheets(const Domain& domain) {
    if (run.sheetCount < 1 || run.sheetCount > std::max(domain.nodeCount, 1))
        error::fatalError("Depth to groundwater: " + std::to_string(domain.nodeCount) +
                          " nodes in " + std::to_string(run.sheetCount) +
                          " sheets\nFile: " + model::problemFile("coordinates_pm"));
}

// Comparisons with observations and VTK files use the depths too.
bool keepsValues() {
    return run.paraviewMode || run.compareWaterTable || run.compareDepthToTable;
}

void compute(const Domain& domain, DepthFunction depthFunction, std::span<double> depth) {
    if (run.dryRun) return;
    depthFunction(domain.nodeCount, run.sheetCount, run.interpolateDepthToTable, elevation(domain),
                  model::findOutputVar(domain, "head")->columns[0].real8, depth);
}

// Computes the values before the write if they are kept. Allocates the array at its first use. With
// 4-node elements this is at a later output time: the first pass declares no column, but later
// passes compute the values. They differ on purpose.
void prepare(const Domain& domain, const VariableRow& row, OutputVar& var,
             DepthFunction depthFunction) {
    checkSheets(domain);
    if (!keepsValues()) return;
    std::vector<double>& depth = var.columns[0].real8;
    if (depth.empty()) plot_data::allocateColumn(domain, var.columns[0], row.arrayText);
    compute(domain, depthFunction, depth);
}

void init(Domain& domain, const VariableRow& row, OutputVar& var, DepthFunction depthFunction) {
    var.firstExists = model::outputVar(domain, "head").firstExists;
    if (!var.firstExists) return;
    var.columns = plot_data::columnsOf(row);
    if (domain.nodesPerElement == 4) return;
    var.exists = true;
    plot_data::declareColumn(domain, var.columns[0], row.columns[0].name, row.unit);
    prepare(domain, row, var, depthFunction);
}

void read(Domain& domain, const VariableRow& row, OutputVar& var, DepthFunction depthFunction) {
    var.exists = model::outputVar(domain, "head").exists;
    if (var.exists)
        prepare(domain, row, var, depthFunction);
    else
        plot_data::shareColumns(domain, var.columns);
}

void write(Domain& domain, const VariableRow& row, OutputVar& var, DepthFunction depthFunction) {
    if (run.dryRun || keepsValues()) return plot_data::plainWrite(domain, row, var);
    const model::Column& column = var.columns[0];
    auto* depth = static_cast<double*>(plot_data::columnValues(domain, column, row.arrayText));
    compute(domain, depthFunction, {depth, static_cast<std::size_t>(domain.nodeCount)});
    plot_data::writeValues(domain, column, depth);
}

} // namespace

void depth2gwtInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    init(domain, row, var, depth_to_groundwater::depth2gwtDomain);
}

void depth2gwtRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    read(domain, row, var, depth_to_groundwater::depth2gwtDomain);
}

void depth2gwtWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    write(domain, row, var, depth_to_groundwater::depth2gwtDomain);
}

void depth2gwt2dInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    init(domain, row, var, depth_to_groundwater::depth2gwt2dDomain);
}

void depth2gwt2dRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    read(domain, row, var, depth_to_groundwater::depth2gwt2dDomain);
}

void depth2gwt2dWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    write(domain, row, var, depth_to_groundwater::depth2gwt2dDomain);
}

} // namespace derived_columns
