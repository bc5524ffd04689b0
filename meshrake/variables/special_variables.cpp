#include "meshrake/variables/special_variables.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"

#include <limits>

namespace variables {

void zoneInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    var.firstExists = true;
    var.exists = true;
    var.columns = plot_data::columnsOf(row);
    std::string name = plot_data::variableFile(domain, row.stem);
    const bool found = plot_data::checkFileInit(name);
    plot_data::declareColumn(domain, var.columns[0], row.columns[0].name, row.unit);
    // The column has no array of its own: the isopach plot needs the same zones as the plot file.
    if (found) plot_data::readElementZones(domain, name);
}

void zoneRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::string name = plot_data::variableFile(domain, row.stem);
    var.exists = plot_data::readElementZonesIfExist(domain, name);
    if (!var.exists) plot_data::shareColumns(domain, var.columns);
    plot_data::markColumns(domain, var.columns);
}

void zoneWrite(Domain& domain, const VariableRow& row, OutputVar& var) {
    plot_data::tecplotWriteArrayInt4(
        var.columns[0].varNumber, domain.elementCount, domain.elementZone.data(),
        {domain.outputIsPacked, domain.elementIncluded.data()}, row.columns[0].label, domain);
}

namespace {

constexpr std::int32_t fullTensor = 3; // message of the header

// Returns the message of the header as a number.
std::int32_t tensorKind(const std::string& name) {
    const auto header =
        TVNBinaryFile::parseTVNBinFileHeader(TVNBinaryFile::readTVNBinFileHeader(name), name);
    // A free-form read of a null value, such as "," or "/", succeeds and does not change `kind`.
    constexpr std::int32_t unchanged = std::numeric_limits<std::int32_t>::min();
    std::int32_t kind = unchanged;
    int status = free_form::readInteger(header.message, kind);
    if (kind == unchanged && status == io_layer::ok) status = io_layer::invalidData;
    if (status != io_layer::ok)
        error::input_error_stat(
            status, "Error reading file: " + name +
                        "\nThe message of its header is not a number: " + header.message);
    return kind;
}

} // namespace

void elemKInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::string name = plot_data::firstFile(domain, row);
    if (name.empty()) return;
    // plainInit keeps columns that exist already, so their number is decided before it.
    var.columns = plot_data::columnsOf(row);
    if (tensorKind(name) != fullTensor) var.columns.resize(3);
    plot_data::plainInit(domain, row, var);
}

void pecletRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    VariableRow atEveryTime = row;
    atEveryTime.timing = plot_data::Timing::everyTime;
    plot_data::plainRead(domain, atEveryTime, var);
}

void diffPecletRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    pecletRead(domain, row, var);
}

namespace {

// Returns the row with the spelling whose file exists. If the file system ignores case, both are
// names of the same file. An appending run may find a file of either spelling at output time 1
// only. plainInit falls back to that file with the stem of its row, so the stem is selected here.
VariableRow withSpelling(const Domain& domain, const VariableRow& row, std::string_view first,
                         std::string_view second) {
    VariableRow spelled = row;
    spelled.stem = first;
    for (const std::string& suffix : {model::run.timeSuffix, model::outputTimeIndex(1)})
        for (const std::string_view stem : {first, second}) {
            const std::string name = std::string(stem) + domain.name + "." + suffix;
            if (!file_units::exists(model::problemFile(name))) continue;
            spelled.stem = stem;
            return spelled;
        }
    return spelled;
}

constexpr std::string_view firstPassStem = "ETPMEvap3D_";
constexpr std::string_view laterStem = "ETPmEvap3D_";

} // namespace

void et3dInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    plot_data::plainInit(domain, withSpelling(domain, row, firstPassStem, laterStem), var);
}

void et3dRead(Domain& domain, const VariableRow&, OutputVar& var) {
    const auto read = [&](std::string_view stem) {
        return plot_data::readColumnsIfExist(domain, var.columns,
                                             plot_data::variableFile(domain, stem));
    };
    var.exists = read(laterStem) || read(firstPassStem);
    if (!var.exists) plot_data::shareColumns(domain, var.columns);
    plot_data::markColumns(domain, var.columns);
}

} // namespace variables
