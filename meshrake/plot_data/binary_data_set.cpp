#include "meshrake/plot_data/binary_data_set.hpp"

#include "meshrake/model/append_state.hpp"
#include "meshrake/model/run_state.hpp"
#include "tecio/durability.hpp"
#include "tecio/failed_file.hpp"
#include "tecio/repeated_times.hpp"
#include "tecio/tecio.h"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace plot_data::binary {

using model::DataSet;
using model::run;

namespace {

// Every zone with a time belongs to it.
constexpr std::int32_t strand = 1;

// Status of an open that names no variables.
constexpr std::int32_t withoutZones = 1;

std::string trimmed(std::string_view text) {
    return std::string(StringHelpers::trimRight(text));
}

// As tecio.h tells it; 1 for any failure of another library.
std::int32_t ownStatus(std::int32_t status) {
    return MESHRAKE_OWN_TECIO || status == 0 ? status : 1;
}

// Name of the file at which a call of the library failed.
std::string failedFile(const std::string& path) {
    if constexpr (MESHRAKE_OWN_TECIO)
        if (tecio::sidecarFailed()) return path + ".szhdr";
    return path;
}

// In front of the name of the plot file, why it was refused.
std::string_view refusal(std::int32_t status) {
    if (MESHRAKE_OWN_TECIO && status == 1)
        return "Arrays of a zone do not fit its variables, nodes and elements: ";
    if (ownStatus(status) == 5) return "Its plot file has zones with other nodes or elements: ";
    return "File: ";
}

void check(std::int32_t status, const std::string& what, Domain& domain) {
    if (status == 0) return;
    const std::string file = failedFile(domain.dataSet.fileName + ".szplt");
    tecFileWriterClose(&domain.dataSet.handle);
    error::fatalError(what + " " + domain.name + " domain.\n" + std::string(refusal(status)) +
                      file);
}

bool continuesOutput() {
    return run.tecplotAppend && run.startTimeIndex > 1;
}

// The library goes on with any data set that has a sidecar, so the decision is made here.
void prepareOpen(const std::string& path) {
    const std::string sidecar = path + ".szhdr";
    const bool goesOn = continuesOutput() && file_units::exists(path);
    if (!goesOn)
        error::checkFileOpen(byte_file::remove(sidecar), sidecar);
    else if (!file_units::exists(sidecar))
        error::checkFileOpen(io_layer::fileNotFound,
                             sidecar +
                                 "\nThe data set was finished: no zone can be appended to it.");
}

// The file that a failed open is about, and why.
std::string openFailure(std::int32_t status, const std::string& path) {
    switch (ownStatus(status)) {
    case 2:
        return path + "\nThe file is damaged: no zone can be appended to it.";
    case 3:
        return path + ".szhdr\nThe file is damaged: no zone can be appended to its data set.";
    case 4:
        return path + "\nThe data set has other variables than this run.";
    case 6:
        return path + ".szhdr\nThe data set was left unfinished by a run without the option to "
                      "append: no zone can be appended to it.";
    default:
        return failedFile(path);
    }
}

// The library takes names with commas between them.
void checkNames(const Domain& domain) {
    const std::string& list = domain.dataSet.varNameList;
    if (std::count(list.begin(), list.end(), ',') < domain.dataSet.numVars) return;
    error::input_error(
        "A variable of the " + domain.name +
        " domain has a comma in its name, which a binary plot file cannot hold: " + list);
}

// The library's numbers of the zone types that domains have.
std::int32_t zoneTypeCode(std::string_view zoneType) {
    constexpr std::pair<std::string_view, std::int32_t> codes[] = {
        {"FELINESEG", 1}, {"FEQUADRILATERAL", 3}, {"FETETRAHEDRON", 4}, {"FEBRICK", 5}};
    for (const auto& [word, code] : codes)
        if (word == zoneType) return code;
    return 0;
}

// A run that was cut short, after its last output time was recorded, may have left zones that a
// reader of the file does not see yet. Where no further time has come, this run writes no zone; it
// shows those. A damaged data set ends the run; one without sidecar, which was finished, or without
// zones stays as it is.
void showZonesOfEarlierRun(const Domain& domain) {
    if (!MESHRAKE_OWN_TECIO || !continuesOutput()) return;
    if (!domain.exists || !domain.writeDomain.enabled) return;
    const std::string name = model::problemFile(domain.name), path = name + ".szplt";
    if (!file_units::exists(path) || !file_units::exists(path + ".szhdr")) return;
    void* handle = nullptr;
    if constexpr (MESHRAKE_OWN_TECIO) tecio::setDurable(true);
    const std::int32_t status = tecFileWriterOpen(name.c_str(), "", "", 1, 0, 0, nullptr, &handle);
    if (status == withoutZones) return;
    error::checkFileOpen(status, openFailure(status, path));
    const std::int32_t flushed = tecFileWriterFlush(handle, 0, nullptr);
    error::checkFileWrite(flushed, failedFile(path));
}

double timeOf(std::string_view text, const Domain& domain) {
    double time = std::numeric_limits<double>::quiet_NaN();
    int status = free_form::readReal(text, time);
    if (status == io_layer::ok && !std::isfinite(time)) status = io_layer::invalidData;
    if (status != io_layer::ok)
        error::input_error_stat(status, "The solution time of the " + domain.name +
                                            " domain is no number: " + trimmed(text) +
                                            "\nFile: " + run.timeFile);
    return time;
}

// One entry for each variable: `given` for those in the list, `otherwise` for the rest.
std::vector<std::int32_t> marked(const std::vector<std::int32_t>& variables, std::int32_t given,
                                 std::int32_t otherwise, const DataSet& dataSet) {
    std::vector<std::int32_t> list(static_cast<std::size_t>(dataSet.numVars), otherwise);
    for (const std::int32_t number : variables)
        if (number > 0) list[static_cast<std::size_t>(number - 1)] = given;
    return list;
}

// A run that was cut short may have left the zone of this output time, which is replaced. Those of
// other output times with the same time stay.
void keepZonesOfEarlierTimes(double time, const DataSet& set) {
    if constexpr (MESHRAKE_OWN_TECIO)
        if (tecio::resumedZonesAt(set.handle, time, strand) > 0)
            tecio::keepZones(set.handle, model::earlierOutputTimesAt(time));
}

std::string_view typeText(std::int32_t type) {
    constexpr std::string_view texts[] = {"real(4)", "real(8)", "integer(4)"};
    return texts[type - 1];
}

void checkWritten(std::int32_t status, std::int32_t varNumber, Domain& domain) {
    if (status == 0) return;
    const auto v = static_cast<std::size_t>(varNumber - 1);
    check(status,
          "Writing " + std::string(typeText(domain.dataSet.varTypes[v])) + " data for variable # " +
              std::to_string(varNumber) + " in",
          domain);
}

// `call` is the library's function for values of this type.
template<class Call, class T>
void write(Call call, std::int32_t varNumber, std::int64_t count, const T* values, Domain& domain) {
    if (varNumber < 1) return;
    const DataSet& set = domain.dataSet;
    checkWritten(call(set.handle, set.zoneNumber, varNumber, 0, count, values), varNumber, domain);
}

} // namespace

void fileOpen(std::string_view name, std::string_view title, Domain& domain) {
    DataSet& set = domain.dataSet;
    const std::string path = std::string(name) + ".szplt";
    checkNames(domain);
    prepareOpen(path);
    // A later run that appends relies on the zones of the output times that this one records.
    if constexpr (MESHRAKE_OWN_TECIO) tecio::setDurable(run.tecplotAppend);
    const std::int32_t status =
        tecFileWriterOpen(std::string(name).c_str(), trimmed(title).c_str(),
                          set.varNameList.c_str(), 1, 0, 0, nullptr, &set.handle);
    error::checkFileOpen(status, openFailure(status, path));
}

void addMetadata(std::string_view key, std::string_view value, Domain& domain) {
    check(tecDataSetAddAuxData(domain.dataSet.handle, std::string(key).c_str(),
                               trimmed(value).c_str()),
          "Tecplot data set aux data for", domain);
}

void varUnitsWrite(Domain& domain) {
    const std::vector<std::string>& units = domain.dataSet.varUnits;
    for (std::size_t v = 0; v < units.size(); ++v)
        if (!units[v].empty())
            check(tecVarAddAuxData(domain.dataSet.handle, static_cast<std::int32_t>(v + 1), "Units",
                                   units[v].c_str()),
                  "Tecplot variable unit auxiliary data in", domain);
}

void writeZoneFE(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                 Domain& domain) {
    DataSet& set = domain.dataSet;
    const bool hasTime = !trimmed(solutionTime).empty();
    const double time = hasTime ? timeOf(solutionTime, domain) : 0;
    const std::vector<std::int32_t> varShare = marked(run.sharedVars, 1, 0, set);
    const std::vector<std::int32_t> varPassive = marked({}, 0, 0, set);
    set.varLocation = marked(run.cellCenteredVars, 0, 1, set);
    check(tecZoneCreateFE(set.handle, trimmed(title).c_str(), zoneTypeCode(domain.zoneType),
                          domain.nnTruncated, domain.neTruncated, set.varTypes.data(),
                          varShare.data(), set.varLocation.data(), varPassive.data(),
                          connectivityShareZone, 0, 0, &set.zoneNumber),
          "Create new zone in", domain);
    if (!hasTime) return;
    keepZonesOfEarlierTimes(time, set);
    check(tecZoneSetUnsteadyOptions(set.handle, set.zoneNumber, time, strand),
          "Write solution time in", domain);
}

void writeValues(std::int32_t varNumber, std::int64_t count, const float* values, Domain& domain) {
    write(tecZoneVarWriteFloatValues, varNumber, count, values, domain);
}

void writeValues(std::int32_t varNumber, std::int64_t count, const double* values, Domain& domain) {
    write(tecZoneVarWriteDoubleValues, varNumber, count, values, domain);
}

void writeValues(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                 Domain& domain) {
    write(tecZoneVarWriteInt32Values, varNumber, count, values, domain);
}

void checkCount(std::int32_t varNumber, std::int64_t written, Domain& domain) {
    if (varNumber < 1) return;
    const bool nodal = domain.dataSet.varLocation[static_cast<std::size_t>(varNumber - 1)] == 1;
    const std::int64_t wanted = nodal ? domain.nnTruncated : domain.neTruncated;
    checkWritten(written == wanted ? 0 : 1, varNumber, domain);
}

void writeNodes(std::int64_t count, const std::int32_t* nodes, Domain& domain) {
    check(
        tecZoneNodeMapWrite32(domain.dataSet.handle, domain.dataSet.zoneNumber, 0, 1, count, nodes),
        "Tecplot element connectivity for", domain);
}

void fileFlush(Domain& domain) {
    constexpr std::int32_t retained[] = {1}; // later zones share with it
    check(tecFileWriterFlush(domain.dataSet.handle, 1, retained), "Tecplot flush file for", domain);
}

void fileClose(Domain& domain) {
    DataSet& set = domain.dataSet;
    if (!set.handle) return showZonesOfEarlierRun(domain);
    if (run.tecplotAppend) {
        fileFlush(domain);
        set.handle = nullptr;
        return;
    }
    model::write_string("Closing tecplot file: " + set.fileName);
    const std::int32_t status = tecFileWriterClose(&set.handle);
    error::checkFileWrite(status, failedFile(set.fileName + ".szplt"));
}

} // namespace plot_data::binary
