#include "meshrake/plot_data/zone.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/StringHelpers.hpp"
#include "tvncommon/file_units.hpp"

namespace plot_data {

using model::Domain;
using model::run;

namespace {

// A longer line is cut without a word.
constexpr int headerLimit = 512;

void append(std::string& zoneHeader, std::string_view part) {
    zoneHeader = StringHelpers::cut(
        std::string(StringHelpers::trimRight(zoneHeader)) + std::string(part), headerLimit);
}

} // namespace

void tecplotWriteZoneFE(std::string_view title, std::string_view solutionTime,
                        int connectivityShareZone, Domain& domain) {
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
    if (!run.cellCenteredList.empty())
        append(zoneHeader, ", VARLOCATION=([" + run.cellCenteredList + "]=CELLCENTERED)");
    if (dataSet.zoneNumber > 1 && !run.shareList.empty())
        append(zoneHeader, ", VARSHARELIST=([" + run.shareList + "])");
    if (connectivityShareZone > 0)
        append(zoneHeader, ", CONNECTIVITYSHAREZONE=" + std::to_string(connectivityShareZone));
    file_units::writeLine(domain.tecplotUnit, StringHelpers::trimRight(zoneHeader));
    if (!dataSet.varTypeList.empty())
        file_units::writeLine(domain.tecplotUnit, "DT=(" + dataSet.varTypeList + ")");
    run.cellCenteredList.clear();
    run.shareList.clear();
}

} // namespace plot_data
