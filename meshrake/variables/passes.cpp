#include "meshrake/variables/passes.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
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
void declareAndRead(Domain& domain) {
    for (std::size_t i = 0; i < tableOf(domain).size(); ++i) declareVariable(domain, i);
}

// Processes rows with `sharedLast` after all others, because the list of shared variables is in the
// order of the calls that share them.
void readOrShare(Domain& domain) {
    const Table table = tableOf(domain);
    for (const bool last : {false, true})
        for (std::size_t i = 0; i < table.size(); ++i)
            if (table[i].sharedLast == last) readVariable(domain, i);
}

// Writes in the order of the declarations, because the arrays of a zone have no names.
void writeArrays(Domain& domain) {
    const Table table = tableOf(domain);
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

} // namespace

Table tableOf(const Domain& domain) {
    return model::hasOwnNodes(domain) ? variableTable() : commonNodeTable();
}

void beginDataSet(Domain& domain) {
    announce(domain, model::problemFile(domain.name));
    plot_data::tecplotInit(domain);
    createOutputVars(domain, tableOf(domain));
}

void declareVariable(Domain& domain, std::size_t i) {
    const stages::Scope stage(stages::Stage::derivedColumns);
    const VariableRow& row = tableOf(domain)[i];
    if (!applies(row, domain)) return;
    selectStep(row, row.init, familyInit, plot_data::plainInit)(domain, row, domain.outputVars[i]);
}

void writeFirstZone(Domain& domain) {
    const stages::Scope stage(stages::Stage::formatting);
    if (model::isReadButNotWritten(domain)) return;
    plot_data::tecplotFileOpen(model::problemFile(domain.name), run.titleLines.front(), domain);
    plot_data::tecplotVarUnitsWrite(domain);
    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 0, domain);
    writeArrays(domain);
    plot_data::tecplotWriteConnectivity(domain);
    plot_data::tecplotEndZone(domain);
    flushAtInterval(domain);
}

void beginLaterZone(Domain& domain) {
    domain.dataSet.nextZone = {}; // a pm that is not written still has the previous ones
}

void readVariable(Domain& domain, std::size_t i) {
    const stages::Scope stage(stages::Stage::derivedColumns);
    const VariableRow& row = tableOf(domain)[i];
    if (!applies(row, domain) || !domain.outputVars[i].firstExists) return;
    selectStep(row, row.read, familyRead, plot_data::plainRead)(domain, row, domain.outputVars[i]);
}

void writeLaterZone(Domain& domain) {
    const stages::Scope stage(stages::Stage::formatting);
    if (model::isReadButNotWritten(domain)) return;
    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 1, domain);
    writeArrays(domain);
    plot_data::tecplotEndZone(domain);
    flushAtInterval(domain);
}

void initTecplot(Domain& domain) {
    beginDataSet(domain);
    declareAndRead(domain);
    writeFirstZone(domain);
}

void appendTecplot(Domain& domain) {
    beginLaterZone(domain);
    readOrShare(domain);
    writeLaterZone(domain);
}

} // namespace variables
