#include "meshrake/variables/multi_node_pass.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "meshrake/plot_data/zone.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tvncommon/error.hpp"
#include "tvncommon/io_layer.hpp"

namespace variables {

using model::Domain;
using model::OutputVar;
using model::run;
using plot_data::VariableRow;

namespace {

// pm lends its arrays to domains without nodes of their own and has no plot file itself.
bool readForOthersOnly(const Domain& domain) {
    return domain.tag == model::tags::pm && run.pmPassRequired;
}

void announce(const Domain& domain, const std::string& name) {
    model::write_string("");
    model::write_string(std::string(48, '-'));
    if (readForOthersOnly(domain)) {
        model::write_string("pm data read for common node output");
        return;
    }
    const std::string temporary = name + ".szplt.szhdr";
    if (!run.tecplotAppend && io_layer::exists(temporary))
        error::warningMsg("Tecplot szplt temporary files found (" + temporary +
                          ", etc.)\nConsider deleting them, otherwise data may be appended.");
    model::write_string(domain.name + " data to tecplot");
    model::write_string("Creating tecplot file " + name);
}

template<class Step>
void forEachVariable(Domain& domain, Step step) {
    const auto table = variableTable();
    for (std::size_t i = 0; i < table.size(); ++i)
        if (applies(table[i], domain)) step(table[i], domain.outputVars[i]);
}

void writeArrays(Domain& domain) {
    forEachVariable(domain, [&](const VariableRow& row, OutputVar& var) {
        if (!var.exists) return;
        if (row.write)
            row.write(domain, row, var);
        else
            plot_data::plainWrite(domain, row, var);
    });
}

void readOrShare(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (!var.firstExists) return;
    if (row.read)
        row.read(domain, row, var);
    else
        plot_data::plainRead(domain, row, var);
}

void flushAtInterval(Domain& domain) {
    const std::int32_t done = run.timeIndex - run.firstTimeIndex + 1;
    if (done % run.tecplotFlushInterval == 0) plot_data::tecplotFileFlush(domain);
}

} // namespace

void initMultiTecplot(Domain& domain) {
    const std::string name = model::problemFile(domain.name);
    announce(domain, name);
    plot_data::tecplotInit(domain);
    createOutputVars(domain);
    forEachVariable(domain, [&](const VariableRow& row, OutputVar& var) {
        if (row.init)
            row.init(domain, row, var);
        else
            plot_data::plainInit(domain, row, var);
    });
    if (readForOthersOnly(domain)) return;

    plot_data::tecplotFileOpen(name, run.titleLines.front(), domain);
    plot_data::tecplotVarUnitsWrite(domain);
    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 0, domain);
    writeArrays(domain);
    plot_data::tecplotWriteConnectivity(domain);
    flushAtInterval(domain);
}

void appendMultiTecplot(Domain& domain) {
    run.cellCenteredList.clear();
    run.shareList.clear();
    for (const bool last : {false, true})
        forEachVariable(domain, [&](const VariableRow& row, OutputVar& var) {
            if (row.sharedLast == last) readOrShare(domain, row, var);
        });
    if (readForOthersOnly(domain)) return;

    plot_data::tecplotWriteZoneFE(domain.name, run.currentTimeText, 1, domain);
    writeArrays(domain);
    flushAtInterval(domain);
}

} // namespace variables
