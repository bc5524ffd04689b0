#include "meshrake/plot_data/unit_labels.hpp"

#include "tvncommon/StringHelpers.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/units.hpp"

namespace plot_data {

using model::Domain;

namespace {

void appendLine(std::string& text, const std::string& line) {
    if (!text.empty()) text += '\n';
    text += line;
}

void tecplotVarUnitsAddPrivate(std::string_view varName, std::int32_t varNumber,
                               const std::string& units, Domain& domain) {
    if (units.empty()) return;
    const std::string name(StringHelpers::trimLeft(StringHelpers::trimRight(varName)));
    appendLine(domain.dataSet.unitComments, "# " + name + " units: " + units);
    appendLine(domain.dataSet.unitAuxData,
               "VARAUXDATA " + std::to_string(varNumber) + " Units=\"" + units + "\"");
}

} // namespace

void tecplotVarUnitsAdd(std::string_view varName, std::int32_t varNumber, std::string_view label,
                        Domain& domain) {
    tecplotVarUnitsAddPrivate(varName, varNumber, units::parseUnits(label), domain);
}

void tecplotVarUnitsWrite(Domain& domain) {
    const model::DataSet& dataSet = domain.dataSet;
    if (!dataSet.unitComments.empty())
        file_units::writeLine(domain.tecplotUnit, dataSet.unitComments);
    if (!dataSet.unitAuxData.empty())
        file_units::writeLine(domain.tecplotUnit, dataSet.unitAuxData);
}

} // namespace plot_data
