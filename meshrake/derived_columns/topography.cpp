#include "meshrake/derived_columns/topography.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace derived_columns {

using model::run;

namespace {

constexpr std::string_view key = "tvTopo";

// If an appending run has no file at its first output time, it uses the file of the first output
// time in the time window. Other variables fall back to output time 1.
bool findFirstFile(const Domain& domain, std::string_view stem, std::string& name) {
    name = plot_data::variableFile(domain, stem);
    return plot_data::checkFileInit(name, run.appendFirstIndex);
}

void readElevations(Domain& domain, const VariableRow& row, OutputVar& topography,
                    const std::string& name) {
    if (topography.columns.empty()) {
        topography.columns.resize(1);
        plot_data::allocateColumn(domain, topography.columns[0], row.arrayText);
    }
    plot_data::readColumns(domain, std::span(topography.columns).first(1), name);
}

void computeChange(const Domain& domain, OutputVar& var) {
    if (domain.tag != model::tags::pm) return;
    const std::vector<double>& current = var.columns[0].real8;
    std::vector<double>& change = var.columns[1].real8;
    for (std::size_t i = 0; i < change.size(); ++i) change[i] = domain.z[i] - current[i];
}

void readCurrentElevations(Domain& domain, const VariableRow& row) {
    const std::string name = plot_data::variableFile(domain, row.stem);
    OutputVar& topography = model::outputVar(domain, key);
    const std::span elevations = std::span(topography.columns).first(1);
    topography.exists = plot_data::readColumnsIfExist(domain, elevations, name);
}

} // namespace

const std::vector<double>& elevation(const Domain& domain) {
    const OutputVar* topography = model::findOutputVar(domain, key);
    return topography && topography->firstExists ? topography->columns[0].real8 : domain.z;
}

void tvTopoPreInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    OutputVar& topography = model::outputVar(domain, key);
    std::string name;
    var.firstExists = topography.firstExists = findFirstFile(domain, row.stem, name);
    if (var.firstExists) readElevations(domain, row, topography, name);
}

void tvTopoPreRead(Domain& domain, const VariableRow& row, OutputVar&) {
    readCurrentElevations(domain, row);
}

void tvTopoInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    std::string name;
    var.firstExists = var.exists = findFirstFile(domain, row.stem, name);
    if (!var.firstExists) return;
    // They were read for the heads. A dry run reports the file with this row too, as below.
    if (var.columns.empty() || run.dryRun) readElevations(domain, row, var, name);
    plot_data::declareColumn(domain, var.columns[0], row.columns[0].name, row.unit);
    var.columns[0].label = row.columns[0].label;
    if (domain.tag != model::tags::pm) return;
    var.columns.push_back(plot_data::columnOf(row, row.columns[1].label));
    plot_data::allocateColumn(domain, var.columns[1], "time varying topography z change array");
    plot_data::declareColumn(domain, var.columns[1], row.columns[1].name, row.unit);
    computeChange(domain, var);
}

void tvTopoRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    // A dry run reports the file with the row whose columns show it.
    if (run.dryRun) readCurrentElevations(domain, row);
    if (!var.exists) return plot_data::shareColumns(domain, var.columns);
    computeChange(domain, var);
}

void tvTopoZoneInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    std::string name;
    var.firstExists = var.exists = findFirstFile(domain, row.stem, name);
    if (!var.firstExists) return;
    var.columns = plot_data::columnsOf(row);
    plot_data::allocateColumn(domain, var.columns[0], row.arrayText);
    plot_data::declareColumn(domain, var.columns[0], row.columns[0].name, row.unit);
    plot_data::readColumns(domain, var.columns, name);
}

} // namespace derived_columns
