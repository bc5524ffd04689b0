#include "meshrake/plot_data/unit_labels.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/units/units.hpp"

namespace plot_data {

using model::Domain;
using model::run;

namespace {

void tecplotVarUnitsAddPrivate(std::string_view varName, std::int32_t varNumber,
                               const std::string& unit, Domain& domain) {
    writer().addUnit(varName, varNumber, unit, domain);
}

// Returns the unit for a species. Heat has a temperature instead of a concentration and a heat flux
// instead of a mass flux. Particles have a number of particles instead of a mass.
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
    writer().writeUnits(domain);
}

} // namespace plot_data
