#include "meshrake/variables/common_node_columns.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "tvncommon/units/units.hpp"

namespace variables {

using model::Column;
using model::DataType;
using model::Domain;
using model::OutputVar;
using model::run;
using plot_data::VariableRow;

namespace {

// Returns the variable of pm with this key or, if pm has none, a variable without columns.
const OutputVar& pmSource(const Domain& domain, std::string_view key) {
    static const OutputVar none;
    const OutputVar* found = model::findOutputVar(*domain.pmReference, key);
    return found ? *found : none;
}

// Returns whether the variable is in the data set.
bool copyFlagsFromPm(const Domain& domain, const VariableRow& row, OutputVar& var) {
    const OutputVar& source = pmSource(domain, row.key);
    var.firstExists = source.firstExists;
    var.exists = source.exists;
    return var.firstExists;
}

void declare(Domain& domain, const VariableRow& row, OutputVar& var,
             const plot_data::ColumnText& text, std::string_view unit) {
    Column& column = var.columns.emplace_back(plot_data::columnOf(row, text.label));
    plot_data::declareColumn(domain, column, text.name, unit);
}

} // namespace

void commonNodeInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (copyFlagsFromPm(domain, row, var))
        declare(domain, row, var, row.columns[0], row.unit);
    else
        model::optionOf(domain, row.option).enabled = false;
}

void commonNodeHeadInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!copyFlagsFromPm(domain, row, var)) return;
    declare(domain, row, var, row.columns[0], row.unit);
    if (model::enabled(domain, model::Option::pressureHeads))
        declare(domain, row, var, row.columns[1], row.unit);
}

void commonNodeConcInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!run.speciesPresent || !copyFlagsFromPm(domain, row, var)) return;
    for (std::size_t s = 0; s < run.speciesNames.size(); ++s) {
        const bool heat = run.speciesFlagA[s] != 0;
        if (heat) units::setTempUnitsToC(); // as for the species of pm; affects all later labels
        const std::string& name = run.speciesNames[s];
        declare(domain, row, var, {name, name}, heat ? "K" : row.unit);
    }
}

void commonNodeRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.exists = pmSource(domain, row.key).exists;
    if (!var.exists) plot_data::shareColumns(domain, var.columns);
}

void commonNodeWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    const OutputVar& source = pmSource(domain, row.key);
    const plot_data::Packing packing{domain.outputIsPacked, domain.nodeIncluded.data()};
    static const Column empty;
    for (std::size_t c = 0; c < var.columns.size(); ++c) {
        const Column& column = var.columns[c];
        // Pressure heads can be disabled in pm and enabled here: the column then has no values.
        const bool hasValues = c < source.columns.size();
        const Column& values = hasValues ? source.columns[c] : empty;
        const std::int64_t count = hasValues ? domain.pmReference->nodeCount : 0;
        if (column.type == DataType::single)
            plot_data::tecplotWriteArrayReal4(column.varNumber, count, values.real4.data(), packing,
                                              column.label, domain);
        else
            plot_data::tecplotWriteArrayReal8(column.varNumber, count, values.real8.data(), packing,
                                              column.label, domain);
    }
}

} // namespace variables
