#include "meshrake/plot_data/binary_open.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "tecio/own_functions.hpp"
#include "tecio/tecio.h"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>

namespace plot_data::binary {

using model::DataSet;
using model::Domain;
using model::run;

namespace {

bool continuesOutput() {
    return run.tecplotAppend && run.startTimeIndex > 1;
}

// Removes the sidecar of a data set that is to be replaced, because the library resumes every data
// set that has a sidecar.
void prepareSidecar(const std::string& path) {
    const std::string sidecar = path + ".szhdr";
    const bool resumes = continuesOutput() && file_units::exists(path);
    if (!resumes)
        error::checkFileOpen(byte_file::remove(sidecar), sidecar);
    else if (!file_units::exists(sidecar))
        error::checkFileOpen(io_layer::fileNotFound,
                             sidecar +
                                 "\nThe data set was finished: no zone can be appended to it.");
}

// Returns the file that caused a failed open and, if the status gives one, the reason.
std::string openFailure(std::int32_t status, const std::string& path) {
    switch (ownStatus(status)) {
    case damagedDataSet:
        return path + "\nThe file is damaged: no zone can be appended to it.";
    case damagedSidecar:
        return path + ".szhdr\nThe file is damaged: no zone can be appended to its data set.";
    case otherVariables:
        return path + "\nThe data set has other variables than this run.";
    case notDurable:
        return path + ".szhdr\nThe data set was left unfinished by a run without the option to "
                      "append: no zone can be appended to it.";
    default:
        return failedFile(path);
    }
}

} // namespace

std::int32_t ownStatus(std::int32_t status) {
    return MESHRAKE_OWN_TECIO || status == 0 ? status : invalidCall;
}

std::string failedFile(const std::string& path) {
    if constexpr (MESHRAKE_OWN_TECIO)
        if (tecio::sidecarFailed()) return path + ".szhdr";
    return path;
}

void checkNames(const Domain& domain) {
    const std::string& list = domain.dataSet.varNameList;
    if (std::count(list.begin(), list.end(), ',') < domain.dataSet.numVars) return;
    error::input_error(
        "A variable of the " + domain.name +
        " domain has a comma in its name, which a binary plot file cannot hold: " + list);
}

void openDataSet(std::string_view name, std::string_view title, Domain& domain) {
    DataSet& set = domain.dataSet;
    const std::string path = std::string(name) + ".szplt";
    checkNames(domain);
    prepareSidecar(path);
    // A later run that appends needs the zones of all output times that this one records.
    if constexpr (MESHRAKE_OWN_TECIO) tecio::setDurable(run.tecplotAppend);
    const std::int32_t status =
        tecFileWriterOpen(std::string(name).c_str(), std::string(title).c_str(),
                          set.varNameList.c_str(), 1, 0, 0, nullptr, &set.handle);
    error::checkFileOpen(status, openFailure(status, path));
}

void publishZonesOfEarlierRun(const Domain& domain) {
    if (!MESHRAKE_OWN_TECIO || !continuesOutput()) return;
    if (!domain.exists || !domain.writeDomain.enabled) return;
    const std::string name = model::problemFile(domain.name), path = name + ".szplt";
    if (!file_units::exists(path) || !file_units::exists(path + ".szhdr")) return;
    void* handle = nullptr;
    if constexpr (MESHRAKE_OWN_TECIO) tecio::setDurable(true);
    const std::int32_t status = tecFileWriterOpen(name.c_str(), "", "", 1, 0, 0, nullptr, &handle);
    // Without a variable list the library refuses a data set that has no zones.
    if (status == invalidCall) return;
    error::checkFileOpen(status, openFailure(status, path));
    const std::int32_t flushed = tecFileWriterFlush(handle, 0, nullptr);
    error::checkFileWrite(flushed, failedFile(path));
}

} // namespace plot_data::binary
