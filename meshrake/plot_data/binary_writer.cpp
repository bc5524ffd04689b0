#include "meshrake/model/append_state.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_open.hpp"
#include "meshrake/plot_data/node_lists.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tecio/own_functions.hpp"
#include "tecio/tecio.h"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace plot_data {

using model::DataSet;
using model::Domain;
using model::run;

namespace {

// The strand of every zone with a time.
constexpr std::int32_t strand = 1;

// A longer unit is cut without a message.
constexpr std::size_t unitLimit = 50;

constexpr std::string_view noReason = "File: ";

// Returns the reason of a failed call, as a text before the name of the file.
std::string_view reasonOf(std::int32_t status) {
    if (MESHRAKE_OWN_TECIO && status == binary::invalidCall)
        return "Arrays of a zone do not fit its variables, nodes and elements: ";
    if (binary::ownStatus(status) == binary::otherMesh)
        return "Its plot file has zones with other nodes or elements: ";
    return noReason;
}

// After a failed call, closes the data set, which stays unfinished, and ends the run.
void check(std::int32_t status, const std::string& what, Domain& domain) {
    if (status == 0) return;
    const std::string file = binary::failedFile(domain.dataSet.fileName + ".szplt");
    tecFileWriterClose(&domain.dataSet.handle);
    const std::string_view reason = reasonOf(status);
    const std::string message =
        what + " " + domain.name + " domain.\n" + std::string(reason) + file;
    // The numbers of another library are not those of the I/O layer.
    if (MESHRAKE_OWN_TECIO && reason == noReason) error::fatalErrorStat(status, message);
    error::fatalError(message);
}

void addVariableName(std::string_view name, Domain& domain) {
    domain.dataSet.varNameList += name;
}

void addDataType(model::DataType type, Domain& domain) {
    domain.dataSet.varTypes.push_back(static_cast<std::int32_t>(type));
}

void addUnit(std::string_view, std::int32_t varNumber, const std::string& unit, Domain& domain) {
    std::vector<std::string>& units = domain.dataSet.varUnits;
    units.resize(std::max(units.size(), static_cast<std::size_t>(varNumber)));
    units[static_cast<std::size_t>(varNumber - 1)] = StringHelpers::cut(unit, unitLimit);
}

void writeMetadata(std::string_view key, std::string_view value, Domain& domain) {
    check(tecDataSetAddAuxData(domain.dataSet.handle, std::string(key).c_str(),
                               std::string(value).c_str()),
          "Tecplot data set aux data for", domain);
}

void writeUnits(Domain& domain) {
    const std::vector<std::string>& units = domain.dataSet.varUnits;
    for (std::size_t v = 0; v < units.size(); ++v)
        if (!units[v].empty())
            check(tecVarAddAuxData(domain.dataSet.handle, static_cast<std::int32_t>(v + 1), "Units",
                                   units[v].c_str()),
                  "Tecplot variable unit auxiliary data in", domain);
}

void flushFile(Domain& domain) {
    constexpr std::int32_t retained[] = {1}; // later zones share its values
    check(tecFileWriterFlush(domain.dataSet.handle, 1, retained), "Tecplot flush file for", domain);
}

void closeFile(Domain& domain) {
    DataSet& set = domain.dataSet;
    if (!set.handle) return binary::publishZonesOfEarlierRun(domain);
    if (run.tecplotAppend) { // a later run resumes the data set, so it stays unfinished
        flushFile(domain);
        set.handle = nullptr;
        return;
    }
    model::write_string("Closing tecplot file: " + set.fileName);
    const std::int32_t status = tecFileWriterClose(&set.handle);
    error::checkFileWrite(status, binary::failedFile(set.fileName + ".szplt"));
}

// Returns the library's number of a zone type.
std::int32_t zoneTypeCode(std::string_view zoneType) {
    constexpr std::pair<std::string_view, std::int32_t> codes[] = {
        {"FELINESEG", 1}, {"FEQUADRILATERAL", 3}, {"FETETRAHEDRON", 4}, {"FEBRICK", 5}};
    for (const auto& [word, code] : codes)
        if (word == zoneType) return code;
    return 0;
}

// Returns a list with an entry for each variable: `value` for these numbers, `otherwise` for all
// others.
std::vector<std::int32_t> entries(const std::vector<std::int32_t>& varNumbers, std::int32_t value,
                                  std::int32_t otherwise, const DataSet& set) {
    std::vector<std::int32_t> list(static_cast<std::size_t>(set.numVars), otherwise);
    for (const std::int32_t number : varNumbers)
        if (number > 0) list[static_cast<std::size_t>(number - 1)] = value;
    return list;
}

// Keeps zones of other output times that have the same time. A zone of this output time, which an
// interrupted run may have left, is replaced.
void keepZonesOfEarlierTimes(double time, const DataSet& set) {
    if constexpr (MESHRAKE_OWN_TECIO)
        if (tecio::resumedZonesAt(set.handle, time, strand) > 0)
            tecio::keepZones(set.handle, model::earlierOutputTimesAt(time));
}

void writeZone(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
               Domain& domain) {
    DataSet& set = domain.dataSet;
    const bool hasTime = !solutionTime.empty();
    const double time = hasTime ? model::timeOf(solutionTime) : 0;
    const std::vector<std::int32_t> varShare = entries(set.nextZone.sharedVars, 1, 0, set);
    const std::vector<std::int32_t> varPassive = entries({}, 0, 0, set);
    set.varLocation = entries(set.nextZone.cellCenteredVars, 0, 1, set);
    check(tecZoneCreateFE(set.handle, std::string(title).c_str(), zoneTypeCode(domain.zoneType),
                          domain.nnTruncated, domain.neTruncated, set.varTypes.data(),
                          varShare.data(), set.varLocation.data(), varPassive.data(),
                          connectivityShareZone, 0, 0, &set.zoneNumber),
          "Create new zone in", domain);
    if (!hasTime) return;
    keepZonesOfEarlierTimes(time, set);
    check(tecZoneSetUnsteadyOptions(set.handle, set.zoneNumber, time, strand),
          "Write solution time in", domain);
}

void checkWritten(std::int32_t status, std::int32_t varNumber, Domain& domain) {
    if (status == 0) return;
    constexpr std::string_view words[] = {"real(4)", "real(8)", "integer(4)"};
    const std::int32_t type = domain.dataSet.varTypes[static_cast<std::size_t>(varNumber - 1)];
    check(status,
          "Writing " + std::string(words[type - 1]) + " data for variable # " +
              std::to_string(varNumber) + " in",
          domain);
}

// Ends the run if the variable got another number of values than the zone has.
void checkCount(std::int32_t varNumber, std::int64_t written, Domain& domain) {
    const bool nodal = domain.dataSet.varLocation[static_cast<std::size_t>(varNumber - 1)] == 1;
    const std::int64_t expected = nodal ? domain.nnTruncated : domain.neTruncated;
    checkWritten(written == expected ? 0 : binary::invalidCall, varNumber, domain);
}

template<class T>
using LibraryWrite = std::int32_t (*)(void* handle, std::int32_t zone, std::int32_t varNumber,
                                      std::int32_t partition, std::int64_t count, const T* values);

// Variable number 0 has no column: its values are dropped. The library is also called for an array
// without values. `libraryWrite` is its function for values of this type.
template<class T, LibraryWrite<T> libraryWrite>
void writeArray(std::int32_t varNumber, const ValueGenerator<T>& next, std::string_view,
                Domain& domain) {
    if (varNumber < 1) return;
    const DataSet& set = domain.dataSet;
    std::array<T, valuesPerPiece> buffer;
    std::int64_t written = 0;
    std::span<const T> piece = next(buffer);
    do {
        checkWritten(
            libraryWrite(set.handle, set.zoneNumber, varNumber, 0, std::ssize(piece), piece.data()),
            varNumber, domain);
        written += std::ssize(piece);
        piece = next(buffer);
    } while (!piece.empty());
    checkCount(varNumber, written, domain);
}

// The library is also called for a zone without elements.
void writeConnectivity(Domain& domain) {
    const DataSet& set = domain.dataSet;
    const auto write = [&](const std::int32_t* nodes, std::int64_t lists, int length) {
        check(tecZoneNodeMapWrite32(set.handle, set.zoneNumber, 0, 1, lists * length, nodes),
              "Tecplot element connectivity for", domain);
    };
    bool anyWritten = false;
    writeNodeLists(domain, [&](const std::int32_t* nodes, std::int64_t lists, int length) {
        write(nodes, lists, length);
        anyWritten = true;
    });
    if (!anyWritten) write(nullptr, 0, 0);
}

// The library commits a zone with its last array.
void endZone(Domain&) {}

} // namespace

const WriterFunctions binaryWriter{.extension = ".szplt",
                                   .hidesIncompleteZones = true,
                                   .addVariableName = addVariableName,
                                   .addDataType = addDataType,
                                   .addUnit = addUnit,
                                   .openFile = binary::openDataSet,
                                   .writeMetadata = writeMetadata,
                                   .writeUnits = writeUnits,
                                   .flushFile = flushFile,
                                   .closeFile = closeFile,
                                   .writeZone = writeZone,
                                   .writeReal4 = writeArray<float, tecZoneVarWriteFloatValues>,
                                   .writeReal8 = writeArray<double, tecZoneVarWriteDoubleValues>,
                                   .writeInt4 =
                                       writeArray<std::int32_t, tecZoneVarWriteInt32Values>,
                                   .writeConnectivity = writeConnectivity,
                                   .endZone = endZone};

} // namespace plot_data
