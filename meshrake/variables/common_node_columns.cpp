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

// pm's variable; one without files where pm is not passed through.
const OutputVar& lender(const Domain& domain, std::string_view key) {
    static const OutputVar none;
    const OutputVar* found = model::findOutputVar(*domain.pmReference, key);
    return found ? *found : none;
}

bool borrow(const Domain& domain, const VariableRow& row, OutputVar& var) {
    const OutputVar& lent = lender(domain, row.key);
    var.firstExists = lent.firstExists;
    var.exists = lent.exists;
    return var.firstExists;
}

void declare(Domain& domain, const VariableRow& row, OutputVar& var,
             const plot_data::ColumnText& text, std::string_view unit) {
    Column& column = var.columns.emplace_back(plot_data::columnOf(row, text.label));
    plot_data::declareColumn(domain, column, text.name, unit);
}

} // namespace

void lentInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (borrow(domain, row, var))
        declare(domain, row, var, row.columns[0], row.unit);
    else
        model::optionOf(domain, row.option).enabled = false;
}

void lentHeadInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!borrow(domain, row, var)) return;
    declare(domain, row, var, row.columns[0], row.unit);
    if (model::enabled(domain, model::Option::pressureHeads))
        declare(domain, row, var, row.columns[1], row.unit);
}

void lentConcInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!run.speciesPresent || !borrow(domain, row, var)) return;
    for (std::size_t s = 0; s < run.speciesNames.size(); ++s) {
        const bool heat = run.speciesFlagA[s] != 0;
        if (heat) units::setTempUnitsToC();
        const std::string& name = run.speciesNames[s];
        declare(domain, row, var, {name, name}, heat ? "K" : row.unit);
    }
}

void lentRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.exists = lender(domain, row.key).exists;
    if (!var.exists) plot_data::shareColumns(var.columns);
}

void lentWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    const OutputVar& lent = lender(domain, row.key);
    const plot_data::Packing packing{domain.truncateEnabled, domain.nodeIncluded.data()};
    static const Column empty;
    for (std::size_t c = 0; c < var.columns.size(); ++c) {
        const Column& shown = var.columns[c];
        // pm may have switched off what this domain shows: then there is nothing to write.
        const Column& values = c < lent.columns.size() ? lent.columns[c] : empty;
        if (shown.type == DataType::single)
            plot_data::tecplotWriteArrayReal4(shown.varNumber,
                                              static_cast<std::int64_t>(values.real4.size()),
                                              values.real4.data(), packing, shown.label, domain);
        else
            plot_data::tecplotWriteArrayReal8(shown.varNumber,
                                              static_cast<std::int64_t>(values.real8.size()),
                                              values.real8.data(), packing, shown.label, domain);
    }
}

} // namespace variables
