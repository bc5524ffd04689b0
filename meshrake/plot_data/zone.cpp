#include "meshrake/plot_data/zone.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_data_set.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace plot_data {

using model::Domain;
using model::run;

namespace {

// A longer line, and a longer list of variable numbers in it, is cut without a word.
constexpr int headerLimit = 512;
constexpr int listLimit = 512;

std::string listOf(const std::vector<std::int32_t>& numbers) {
    std::string list;
    for (const std::int32_t number : numbers)
        list += (list.empty() ? "" : ",") + std::to_string(number);
    return std::string(StringHelpers::cut(list, listLimit));
}

void append(std::string& zoneHeader, std::string_view part) {
    zoneHeader = StringHelpers::cut(
        std::string(StringHelpers::trimRight(zoneHeader)) + std::string(part), headerLimit);
}

void writeZoneLine(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                   Domain& domain) {
    model::DataSet& dataSet = domain.dataSet;
    ++dataSet.zoneNumber;
    std::string zoneHeader;
    append(zoneHeader, "ZONE T=\"" + std::string(StringHelpers::trimRight(title)) + "\"");
    const std::string_view time = StringHelpers::trimLeft(StringHelpers::trimRight(solutionTime));
    if (!time.empty()) append(zoneHeader, ", SOLUTIONTIME=" + std::string(time));
    append(zoneHeader, ", DATAPACKING=BLOCK");
    append(zoneHeader, ", NODES=" + std::to_string(domain.nnTruncated));
    append(zoneHeader, ", ELEMENTS=" + std::to_string(domain.neTruncated));
    append(zoneHeader, ", ZONETYPE=" + domain.zoneType);
    if (!run.cellCenteredVars.empty())
        append(zoneHeader, ", VARLOCATION=([" + listOf(run.cellCenteredVars) + "]=CELLCENTERED)");
    if (dataSet.zoneNumber > 1 && !run.sharedVars.empty())
        append(zoneHeader, ", VARSHARELIST=([" + listOf(run.sharedVars) + "])");
    if (connectivityShareZone > 0)
        append(zoneHeader, ", CONNECTIVITYSHAREZONE=" + std::to_string(connectivityShareZone));
    file_units::writeLine(domain.tecplotUnit, StringHelpers::trimRight(zoneHeader));
    if (!dataSet.varTypeList.empty())
        file_units::writeLine(domain.tecplotUnit, "DT=(" + dataSet.varTypeList + ")");
}

} // namespace

void tecplotWriteZoneFE(std::string_view title, std::string_view solutionTime,
                        int connectivityShareZone, Domain& domain) {
    if (run.tecplotBinary)
        binary::writeZoneFE(title, solutionTime, connectivityShareZone, domain);
    else
        writeZoneLine(title, solutionTime, connectivityShareZone, domain);
    run.cellCenteredVars.clear();
    run.sharedVars.clear();
}

} // namespace plot_data
