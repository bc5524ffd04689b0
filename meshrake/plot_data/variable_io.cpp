#include "meshrake/plot_data/variable_io.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/deferred_reading.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>

namespace plot_data {

using model::run;

namespace {

std::string fileWithSuffix(const Domain& domain, std::string_view stem, const std::string& suffix) {
    const bool hasDomain = stem.ends_with('_');
    return model::problemFile(std::string(stem) + (hasDomain ? domain.name + "." : "") + suffix);
}

} // namespace

std::int32_t valueCount(const Domain& domain, const Column& column) {
    return column.location == Location::node ? domain.nodeCount : domain.elementCount;
}

std::int64_t valueBytes(const Domain& domain, const Column& column) {
    const bool wide = column.type == DataType::real8;
    return std::int64_t{valueCount(domain, column)} * (wide ? 8 : 4);
}

bool othersUseColumns(const Domain& domain) {
    return run.paraviewMode || (domain.tag == model::tags::pm && run.pmColumnsUsed);
}

std::size_t columnCount(const VariableRow& row) {
    const auto unused = std::find_if(row.columns.begin(), row.columns.end(),
                                     [](const ColumnText& c) { return c.name.empty(); });
    return static_cast<std::size_t>(unused - row.columns.begin());
}

std::string variableFile(const Domain& domain, std::string_view stem) {
    return fileWithSuffix(domain, stem, run.timeSuffix);
}

// The variables of an appending run must be those of the data set on disk. So a variable whose file
// is missing at this run's first output time is declared with the values of an earlier one.
bool checkFileInit(std::string& name, std::int32_t fallback) {
    return file_units::exists(name) || useFallbackFile(name, fallback);
}

bool useFallbackFile(std::string& name, std::int32_t fallback) {
    if (!run.tecplotAppend) return false;
    const std::string suffix = model::outputTimeIndex(fallback);
    name = model::fileName(name.substr(0, name.rfind('.') + 1) + suffix);
    if (!file_units::exists(name)) return false;
    model::write_string("Warning: file not found -> appending at time index " + suffix);
    return true;
}

std::string firstFile(const Domain& domain, const VariableRow& row) {
    if (row.timing == Timing::property) {
        const std::string name = fileWithSuffix(domain, row.stem, model::outputTimeIndex(1));
        return file_units::exists(name) ? name : "";
    }
    std::string name = variableFile(domain, row.stem);
    return checkFileInit(name) ? name : "";
}

Column columnOf(const VariableRow& row, std::string_view label) {
    Column column;
    column.type = row.type;
    column.location = row.location;
    column.label = label;
    return column;
}

std::vector<Column> columnsOf(const VariableRow& row) {
    std::vector<Column> columns;
    for (std::size_t c = 0; c < columnCount(row); ++c)
        columns.push_back(columnOf(row, row.columns[c].label));
    return columns;
}

void declareColumn(Domain& domain, Column& column, std::string_view name, std::string_view unit) {
    column.varNumber = tecplotVarAdd(name, domain);
    tecplotDataType(column.type, domain);
    if (!unit.empty()) tecplotVarUnitsAdd(name, column.varNumber, unit, domain);
    if (column.location == Location::element) tecplotVarLocCCAdd(column.varNumber, domain);
}

void allocateColumn(const Domain& domain, Column& column, std::string_view arrayText) {
    if (run.dryRun) return;
    const std::int32_t n = valueCount(domain, column);
    switch (column.type) {
    case DataType::single:
        return ArrayHelpers::allocateArray(column.real4, n, arrayText);
    case DataType::real8:
        return ArrayHelpers::allocateArray(column.real8, n, arrayText);
    case DataType::longInt:
        return ArrayHelpers::allocateArray(column.int4, n, arrayText);
    }
}

namespace {

using TVNBinaryFile::Missing;

// Tests a file in a dry run instead of reading it. Returns the result that the read would have.
bool test(const ResultFile& file, Missing missing) {
    if (missing == Missing::returnsFalse && !file_units::exists(file.name)) return false;
    run.dryRun->testFile(file);
    return true;
}

bool read(const Domain& domain, std::span<Column> columns, const std::string& name,
          Missing missing) {
    const stages::Scope stage(stages::Stage::reading);
    const std::int32_t n = valueCount(domain, columns[0]);
    if (run.dryRun)
        return test({name, columns[0].type, n, columns.size(), columns[0].varNumber}, missing);
    const auto components = static_cast<int>(columns.size());
    // The reader puts each component of a record into the array of its column, without a copy.
    float* real4[maximumColumns];
    double* real8[maximumColumns];
    for (std::size_t c = 0; c < columns.size(); ++c) {
        real4[c] = columns[c].real4.data();
        real8[c] = columns[c].real8.data();
    }
    using namespace TVNBinaryFile;
    switch (columns[0].type) {
    case DataType::single:
        if (components == 1) return read_r4_1d(name, n, real4[0], nullptr, missing);
        return read_r4_components(name, n, components, real4, nullptr, missing);
    case DataType::real8:
        if (components == 1) return read_r8_1d(name, n, real8[0], nullptr, missing);
        return read_r8_components(name, n, components, real8, nullptr, missing);
    case DataType::longInt:
        return read_i4_1d(name, n, columns[0].int4.data(), nullptr, missing);
    }
    return false;
}

bool readZones(Domain& domain, const std::string& name, Missing missing) {
    const stages::Scope stage(stages::Stage::reading);
    const std::int32_t n = domain.elementCount;
    if (run.dryRun) return test({name, DataType::longInt, n, 1, 0}, missing);
    return TVNBinaryFile::read_i4_1d(name, n, domain.elementZone.data(), nullptr, missing);
}

bool readOrOpen(Domain& domain, const VariableRow& row, OutputVar& var, const std::string& name,
                Missing missing) {
    if (var.readsDeferred) return openDeferred(domain, row, var, name, missing);
    return read(domain, var.columns, name, missing);
}

} // namespace

void readColumns(const Domain& domain, std::span<Column> columns, const std::string& name) {
    read(domain, columns, name, Missing::endsRun);
}

bool readColumnsIfExist(const Domain& domain, std::span<Column> columns, const std::string& name) {
    return read(domain, columns, name, Missing::returnsFalse);
}

void readOrShareColumns(Domain& domain, OutputVar& var, std::span<Column> columns,
                        const std::string& name) {
    var.exists = readColumnsIfExist(domain, columns, name);
    if (!var.exists) shareColumns(domain, columns);
}

void readElementZones(Domain& domain, const std::string& name) {
    readZones(domain, name, Missing::endsRun);
}

bool readElementZonesIfExist(Domain& domain, const std::string& name) {
    return readZones(domain, name, Missing::returnsFalse);
}

void shareColumns(Domain& domain, std::span<const Column> columns) {
    for (const Column& column : columns) tecplotVarShareAdd(column.varNumber, domain);
}

void markColumns(Domain& domain, std::span<const Column> columns) {
    for (const Column& column : columns)
        if (column.location == Location::element) tecplotVarLocCCAdd(column.varNumber, domain);
}

void writeColumn(Domain& domain, const Column& column) {
    switch (column.type) {
    case DataType::single:
        return writeValues(domain, column, column.real4.data());
    case DataType::real8:
        return writeValues(domain, column, column.real8.data());
    case DataType::longInt:
        return writeValues(domain, column, column.int4.data());
    }
}

void writeValues(Domain& domain, const Column& column, const void* values) {
    const bool nodal = column.location == Location::node;
    const std::int32_t n = valueCount(domain, column);
    // In a common-node domain `nodeIncluded` has an entry for each pm node, but the column has a
    // value for each of the domain's own nodes.
    const std::vector<std::uint8_t>& nodes =
        model::hasOwnNodes(domain) ? domain.nodeIncluded : domain.domainNodeIncluded;
    const Packing packing{domain.outputIsPacked, (nodal ? nodes : domain.elementIncluded).data()};
    switch (column.type) {
    case DataType::single:
        return tecplotWriteArrayReal4(column.varNumber, n, static_cast<const float*>(values),
                                      packing, column.label, domain);
    case DataType::real8:
        return tecplotWriteArrayReal8(column.varNumber, n, static_cast<const double*>(values),
                                      packing, column.label, domain);
    case DataType::longInt:
        return tecplotWriteArrayInt4(column.varNumber, n, static_cast<const std::int32_t*>(values),
                                     packing, column.label, domain);
    }
}

void* columnValues(const Domain& domain, const Column& column, std::string_view arrayText) {
    const std::int64_t bytes = valueBytes(domain, column);
    if (std::ssize(run.columnValues) < bytes)
        ArrayHelpers::allocateArray(run.columnValues, bytes, arrayText);
    return run.columnValues.data();
}

void plainInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::string name = firstFile(domain, row);
    var.firstExists = var.exists = !name.empty();
    if (!var.firstExists) return;
    if (var.columns.empty()) var.columns = columnsOf(row);
    var.readsDeferred = canDeferReads(domain, row, var, name);
    for (std::size_t c = 0; c < var.columns.size(); ++c) {
        if (!var.readsDeferred) allocateColumn(domain, var.columns[c], row.arrayText);
        declareColumn(domain, var.columns[c], row.columns[c].name, row.unit);
    }
    readOrOpen(domain, row, var, name, Missing::endsRun);
}

void plainRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (row.timing != Timing::everyTime) return constantRead(domain, row, var);
    std::string name = variableFile(domain, row.stem);
    var.exists = readOrOpen(domain, row, var, name, Missing::returnsFalse);
    if (!var.exists && row.laterFallback && useFallbackFile(name))
        var.exists = readOrOpen(domain, row, var, name, Missing::endsRun);
    if (!var.exists) shareColumns(domain, var.columns);
    markColumns(domain, var.columns);
}

void plainWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (var.openFile.unit != 0) return writeDeferred(domain, row, var);
    for (const Column& column : var.columns) writeColumn(domain, column);
}

void constantRead(Domain& domain, const VariableRow&, OutputVar& var) {
    var.exists = false;
    shareColumns(domain, var.columns);
    markColumns(domain, var.columns);
}

} // namespace plot_data
