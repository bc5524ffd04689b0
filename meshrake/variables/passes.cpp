#include "meshrake/variables/passes.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "meshrake/plot_data/zone.hpp"
#include "meshrake/variables/common_node_table.hpp"
#include "meshrake/variables/families.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace variables {

using model::run;
using plot_data::Family;

namespace {

using Table = std::span<const VariableRow>;

void announce(const Domain& domain, const std::string& name) {
    model::write_string("");
    model::write_string(std::string(48, '-'));
    if (model::isReadButNotWritten(domain)) {
        model::write_string("pm data read for common node output");
        return;
    }
    const std::string temporary = name + ".szplt.szhdr";
    if (!run.tecplotAppend && file_units::exists(temporary))
        error::warningMsg("Tecplot szplt temporary files found (" + temporary +
                          ", etc.)\nConsider deleting them, otherwise data may be appended.");
    model::write_string(domain.name + " data to tecplot");
    model::write_string("Creating tecplot file " + name);
}

void createOutputVars(Domain& domain, Table table) {
    domain.outputVars.assign(table.size(), {});
    for (std::size_t i = 0; i < table.size(); ++i) domain.outputVars[i].key = table[i].key;
}

bool applies(const VariableRow& row, const Domain& domain) {
    return (row.domains & domain.tag) != 0 && model::enabled(domain, row.option);
}

// Returns the row's own step if it has one, otherwise the default for a row with a family of files
// or with one file.
VariableRow::Step selectStep(const VariableRow& row, VariableRow::Step own,
                             VariableRow::Step family, VariableRow::Step plain) {
    if (own) return own;
    return row.family == Family::oneFile ? plain : family;
}

// Goes through the rows in the order of the table: a row may use the arrays of rows before it, such
// as elevations and heads.
void declareAndRead(Domain& domain, Table table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!applies(table[i], domain)) continue;
        selectStep(table[i], table[i].init, familyInit, plot_data::plainInit)(domain, table[i],
                                                                              domain.outputVars[i]);
    }
}

// Processes rows with `sharedLast` after all others, because the list of shared variables is in the
// order of the calls that share them.
void readOrShare(Domain& domain, Table table) {
    for (const bool last : {false, true})
        for (std::size_t i = 0; i < table.size(); ++i) {
            const bool inDataSet = applies(table[i], domain) && domain.outputVars[i].firstExists;
            if (!inDataSet || table[i].sharedLast != last) continue;
            selectStep(table[i], table[i].read, familyRead,
                       plot_data::plainRead)(domain, table[i], domain.outputVars[i]);
        }
}

// Writes in the order of the declarations, because the arrays of a zone have no names.
void writeArrays(Domain& domain, Table table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!applies(table[i], domain) || !domain.outputVars[i].exists) continue;
        const VariableRow::Step write = table[i].write ? table[i].write : plot_data::plainWrite;
        write(domain, table[i], domain.outputVars[i]);
    }
}

// Counts output times, not zones, so that all domains are flushed at the same output times.
void flushAtInterval(Domain& domain) {
    const std::int32_t done = run.timeIndex - run.firstTimeIndex + 1;
    if (done % run.tecplotFlushInterval == 0) plot_data::tecplotFileFlush(domain);
}

void initTecplot(Domain& domain, Table table) {
    const std::string name = model::problemFile(domain.name);
    announce(domain, name);
    plot_data::tecplotInit(domain);
    createOutputVars(domain, table);
    declareAndRead(domain, table);
    if (model::isReadButNotWritten(domain)) return;

    plot_data::tecplotFileOpen(name, run.titleLines.front(), domain);
    plot_data::tecplotVarUnitsWrite(domain);
    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 0, domain);
    writeArrays(domain, table);
    plot_data::tecplotWriteConnectivity(domain);
    flushAtInterval(domain);
}

void appendTecplot(Domain& domain, Table table) {
    domain.dataSet.nextZone = {}; // a pm that is not written still has the previous ones
    readOrShare(domain, table);
    if (model::isReadButNotWritten(domain)) return;

    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 1, domain);
    writeArrays(domain, table);
    flushAtInterval(domain);
}

} // namespace

void initMultiTecplot(Domain& domain) {
    initTecplot(domain, variableTable());
}
void initCommonTecplot(Domain& domain) {
    initTecplot(domain, commonNodeTable());
}
void appendMultiTecplot(Domain& domain) {
    appendTecplot(domain, variableTable());
}
void appendCommonTecplot(Domain& domain) {
    appendTecplot(domain, commonNodeTable());
}

} // namespace variables
