#include "meshrake/variables/head_family.hpp"

#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cmath>

namespace variables {

using model::Column;
using model::DataType;
using model::Domain;
using model::Option;
using model::OutputVar;
using plot_data::VariableRow;

namespace {

// In the length unit. LogDepth of a dry node is then -8, not the logarithm of 0 or of a negative
// number.
constexpr double minimumDepth = 1.0e-8;

bool hasWaterDepth(const Domain& domain) {
    return (domain.tag & (model::tags::olf | model::tags::chan)) != 0;
}

bool hasPressureHead(const Domain& domain) {
    return !hasWaterDepth(domain) && model::enabled(domain, Option::pressureHeads);
}

// Depth refers to the current elevation of the ground, LogDepth always to that of the mesh: with
// time-varying topography they differ on purpose. The differences are formed in 64 bits. Depth is
// rounded to 32 bits before the comparison with 0, and the logarithm is that of a 32-bit number.
void computeWaterDepth(const Domain& domain, OutputVar& var) {
    const std::vector<double>& head = var.columns[0].real8;
    const std::vector<double>& ground = derived_columns::elevation(domain);
    std::vector<float>& depth = var.columns[1].real4;
    std::vector<float>& logDepth = var.columns[2].real4;
    for (std::size_t i = 0; i < head.size(); ++i) {
        const auto difference = static_cast<float>(head[i] - ground[i]);
        depth[i] = difference > 0.0F ? difference : 0.0F;
        const double fromMesh = head[i] - domain.z[i];
        logDepth[i] = std::log10(static_cast<float>(std::max(fromMesh, minimumDepth)));
    }
}

void computePressureHead(const Domain& domain, const OutputVar& var, double* pressure) {
    const std::vector<double>& head = var.columns[0].real8;
    const std::vector<double>& ground = derived_columns::elevation(domain);
    for (std::size_t i = 0; i < head.size(); ++i) pressure[i] = head[i] - ground[i];
}

// Pressure heads without an array are computed for the write.
void computeDerivedColumns(const Domain& domain, OutputVar& var) {
    if (hasWaterDepth(domain))
        computeWaterDepth(domain, var);
    else if (hasPressureHead(domain) && plot_data::othersUseColumns(domain))
        computePressureHead(domain, var, var.columns[1].real8.data());
}

// Declares one of the columns that are computed from the heads.
void addDerivedColumn(Domain& domain, const VariableRow& row, OutputVar& var, DataType type,
                      std::string_view name, std::string_view label) {
    Column& column = var.columns.emplace_back(plot_data::columnOf(row, label));
    column.type = type;
    plot_data::declareColumn(domain, column, name, row.unit);
}

void addWaterDepths(Domain& domain, const VariableRow& row, OutputVar& var) {
    addDerivedColumn(domain, row, var, DataType::single, "Depth", "Depth");
    addDerivedColumn(domain, row, var, DataType::single, "LogDepth", "log10(Depth)");
    for (const std::size_t c : {1U, 2U})
        plot_data::allocateColumn(domain, var.columns[c], "depth and log depth arrays");
}

constexpr std::string_view pressureArray = "pressure head array";

void addPressureHead(Domain& domain, const VariableRow& row, OutputVar& var) {
    addDerivedColumn(domain, row, var, DataType::real8, "Pressure Head", "pressure head");
    if (plot_data::othersUseColumns(domain))
        plot_data::allocateColumn(domain, var.columns[1], pressureArray);
}

} // namespace

void headInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    plot_data::plainInit(domain, row, var);
    if (!var.firstExists) return;
    if (hasWaterDepth(domain))
        addWaterDepths(domain, row, var);
    else if (hasPressureHead(domain))
        addPressureHead(domain, row, var);
    computeDerivedColumns(domain, var);
}

void headRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::string name = plot_data::variableFile(domain, row.stem);
    var.exists = plot_data::readColumnsIfExist(domain, std::span(var.columns).first(1), name);
    if (!var.exists) return plot_data::shareColumns(domain, var.columns);
    computeDerivedColumns(domain, var);
}

void headWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!hasPressureHead(domain) || plot_data::othersUseColumns(domain) || model::run.dryRun)
        return plot_data::plainWrite(domain, row, var);
    plot_data::writeColumn(domain, var.columns[0]);
    const Column& column = var.columns[1];
    auto* pressure = static_cast<double*>(plot_data::columnValues(domain, column, pressureArray));
    computePressureHead(domain, var, pressure);
    plot_data::writeValues(domain, column, pressure);
}

} // namespace variables
