#include "meshrake/plot_data/unit_labels.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_data_set.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/units/units.hpp"

#include <algorithm>

namespace plot_data {

using model::Domain;
using model::run;

namespace {

// A longer unit of a binary data set is cut without a word.
constexpr std::size_t unitLimit = 50;

void appendLine(std::string& text, const std::string& line) {
    if (!text.empty()) text += '\n';
    text += line;
}

void tecplotVarUnitsAddPrivate(std::string_view varName, std::int32_t varNumber,
                               const std::string& units, Domain& domain) {
    if (run.tecplotBinary) {
        std::vector<std::string>& list = domain.dataSet.varUnits;
        list.resize(std::max(list.size(), static_cast<std::size_t>(varNumber)));
        list[static_cast<std::size_t>(varNumber - 1)] = StringHelpers::cut(units, unitLimit);
        return;
    }
    if (units.empty()) return;
    const std::string name(StringHelpers::trimLeft(StringHelpers::trimRight(varName)));
    appendLine(domain.dataSet.unitComments, "# " + name + " units: " + units);
    appendLine(domain.dataSet.unitAuxData,
               "VARAUXDATA " + std::to_string(varNumber) + " Units=\"" + units + "\"");
}

// A temperature stands where a concentration would, a heat flux where a mass flux would; particles
// are counted.
std::string parseUnitsTrans(std::size_t speciesIndex, std::string_view label) {
    constexpr std::string_view concentration = "M * L^-3";
    constexpr std::string_view massFlux = "M * L^-2 * T^-1";
    if (run.speciesFlagA[speciesIndex]) {
        if (StringHelpers::equalPadded(label, concentration)) {
            units::setTempUnitsToC();
            return units::parseUnits("K");
        }
        if (StringHelpers::equalPadded(label, massFlux)) return units::parseUnits("M * T^-3");
    } else if (run.speciesFlagB[speciesIndex]) {
        if (StringHelpers::equalPadded(label, concentration)) return units::parseUnits("Nc * L^-3");
        if (StringHelpers::equalPadded(label, massFlux))
            return units::parseUnits("Nc * L^-2 * T^-1");
    }
    return units::parseUnits(label);
}

} // namespace

void tecplotVarUnitsAdd(std::string_view varName, std::int32_t varNumber, std::string_view label,
                        Domain& domain) {
    tecplotVarUnitsAddPrivate(varName, varNumber, units::parseUnits(label), domain);
}

void tecplotTransVarUnitsAdd(std::size_t speciesIndex, std::string_view varName,
                             std::int32_t varNumber, std::string_view label, Domain& domain) {
    tecplotVarUnitsAddPrivate(varName, varNumber, parseUnitsTrans(speciesIndex, label), domain);
}

void tecplotVarUnitsWrite(Domain& domain) {
    if (run.tecplotBinary) return binary::varUnitsWrite(domain);
    const model::DataSet& dataSet = domain.dataSet;
    if (!dataSet.unitComments.empty())
        file_units::writeLine(domain.tecplotUnit, dataSet.unitComments);
    if (!dataSet.unitAuxData.empty())
        file_units::writeLine(domain.tecplotUnit, dataSet.unitAuxData);
}

} // namespace plot_data
