#include "meshrake/plot_data/deferred_reading.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tvncommon/io/file_units.hpp"

namespace plot_data {

using model::run;

namespace {

// A smaller array is collected with others before it is written, and costs little memory.
constexpr std::int64_t minimumDeferred = 1048576; // bytes

} // namespace

bool canDeferReads(const Domain& domain, const VariableRow& row, const OutputVar& var,
                   const std::string& name) {
    const bool ownSteps = row.read || row.write; // they may use the arrays
    if (!writer().hidesIncompleteZones || run.dryRun || ownSteps || othersUseColumns(domain))
        return false;
    const std::int64_t bytes = valueBytes(domain, var.columns[0]);
    return bytes >= minimumDeferred &&
           TVNBinaryFile::hasCompleteRecords(name, static_cast<int>(var.columns.size()), bytes);
}

bool openDeferred(Domain& domain, const VariableRow& row, OutputVar& var, const std::string& name,
                  TVNBinaryFile::Missing missing) {
    const stages::Scope stage(stages::Stage::reading);
    TVNBinaryFile::OpenFile file = TVNBinaryFile::open(name, missing);
    if (file.unit == 0) return false;
    if (TVNBinaryFile::hasRecordPerComponent(file, static_cast<int>(var.columns.size()))) {
        var.openFile = std::move(file);
        return true;
    }
    file_units::freeUnit(file.unit);
    var.readsDeferred = false;
    for (Column& column : var.columns) allocateColumn(domain, column, row.arrayText);
    readColumns(domain, var.columns, name);
    return true;
}

void writeDeferred(Domain& domain, const VariableRow& row, OutputVar& var) {
    const auto components = static_cast<int>(var.columns.size());
    for (int c = 0; c < components; ++c) {
        const Column& column = var.columns[static_cast<std::size_t>(c)];
        void* values = columnValues(domain, column, row.arrayText);
        {
            const stages::Scope stage(stages::Stage::reading);
            TVNBinaryFile::readNextComponent(var.openFile, c + 1, components,
                                             valueBytes(domain, column), values);
        }
        writeValues(domain, column, values);
    }
    file_units::freeUnit(var.openFile.unit);
    var.openFile = {};
}

} // namespace plot_data
