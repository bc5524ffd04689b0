#include "meshrake/plot_data/text_layout.hpp"

#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"

namespace plot_data::text_layout {

using model::DataSet;

namespace {

using number_formats::integerWidth;
using number_formats::valuesPerRow;
using number_formats::wideRealWidth;

// Limits of the format, in characters. A longer zone line, or a longer list of variable numbers in
// it, is truncated without a message.
constexpr std::size_t headerLimit = 512;
constexpr std::size_t listLimit = 512;

std::string listOf(const std::vector<std::int32_t>& numbers) {
    std::string list;
    for (const std::int32_t number : numbers)
        list += (list.empty() ? "" : ",") + std::to_string(number);
    return std::string(StringHelpers::cut(list, listLimit));
}

std::vector<std::string> zoneParts(std::string_view title, std::string_view solutionTime,
                                   int connectivityShareZone, const Domain& domain) {
    const DataSet& set = domain.dataSet;
    std::vector<std::string> parts{"ZONE T=\"" + std::string(title) + "\""};
    const std::string_view time = StringHelpers::trimLeft(solutionTime);
    if (!time.empty()) parts.push_back(", SOLUTIONTIME=" + std::string(time));
    parts.emplace_back(", DATAPACKING=BLOCK");
    parts.push_back(", NODES=" + std::to_string(domain.nnTruncated));
    parts.push_back(", ELEMENTS=" + std::to_string(domain.neTruncated));
    parts.push_back(", ZONETYPE=" + domain.zoneType);
    if (!set.nextZone.cellCenteredVars.empty())
        parts.push_back(", VARLOCATION=([" + listOf(set.nextZone.cellCenteredVars) +
                        "]=CELLCENTERED)");
    if (set.zoneNumber > 1 && !set.nextZone.sharedVars.empty())
        parts.push_back(", VARSHARELIST=([" + listOf(set.nextZone.sharedVars) + "])");
    if (connectivityShareZone > 0)
        parts.push_back(", CONNECTIVITYSHAREZONE=" + std::to_string(connectivityShareZone));
    return parts;
}

} // namespace

std::string titleLine(std::string_view title) {
    return "TITLE = \"" + std::string(title) + "\"";
}

std::string variablesLine(const Domain& domain) {
    return "VARIABLES = " + domain.dataSet.varNameList;
}

std::string metadataLine(std::string_view key, std::string_view value) {
    return "DATASETAUXDATA " + std::string(key) + "=\"" + std::string(value) + "\"";
}

std::string zoneLine(std::string_view title, std::string_view solutionTime,
                     int connectivityShareZone, const Domain& domain) {
    std::string line;
    for (const std::string& part : zoneParts(title, solutionTime, connectivityShareZone, domain))
        line = StringHelpers::cut(std::string(StringHelpers::trimRight(line)) + part, headerLimit);
    return line;
}

bool zoneLineIsCut(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                   const Domain& domain) {
    std::size_t size = 0;
    for (const std::string& part : zoneParts(title, solutionTime, connectivityShareZone, domain))
        size += part.size();
    return size > headerLimit;
}

std::string typesLine(const Domain& domain) {
    const std::string& types = domain.dataSet.varTypeList;
    return types.empty() ? "" : "DT=(" + types + ")";
}

std::string arrayLine(std::string_view label) {
    return "# " + std::string(StringHelpers::trimRight(label));
}

std::int64_t arrayBytes(DataType type, std::int64_t count) {
    const int width = type == DataType::longInt ? integerWidth + 1 : wideRealWidth;
    return count * width + (count + valuesPerRow - 1) / valuesPerRow;
}

std::int64_t nodeListBytes(int length) {
    return length * (integerWidth + 1) + 1;
}

} // namespace plot_data::text_layout
