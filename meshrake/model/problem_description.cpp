#include "meshrake/model/problem_description.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/version.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/units/units_conversion.hpp"

#include <algorithm>

namespace model {

namespace {

constexpr std::int64_t versionLength = 80;
constexpr std::int64_t titleLength = 60;
constexpr std::int64_t speciesNameLength = 50;
constexpr std::int64_t fractionNameLength = 80;
constexpr std::int64_t recordFrame = 8; // the two lengths around a payload

std::string readName(int unit, std::int64_t length) {
    return std::string(StringHelpers::trimRight(file_units::readText(unit, length)));
}

} // namespace

void titleRead() {
    const int unit = file_units::openRecordsRead(problemFile("gen"));
    if (!StringHelpers::equalPadded(file_units::readText(unit, versionLength), version::revision))
        error::warningMsg("Skiv version does not match MESHRAKE version.\n"
                          "This may result in a failure of MESHRAKE to run.");
    run.numTitleLines = file_units::readInteger(unit);
    file_units::checkCount(unit, run.numTitleLines, titleLength, "title lines");
    const std::string blankLine(static_cast<std::size_t>(titleLength), ' ');
    ArrayHelpers::allocate(std::max(run.numTitleLines, 1), run.titleLines, blankLine,
                           "Title array");
    const std::string titles = file_units::readText(unit, titleLength * run.numTitleLines);
    for (std::int32_t i = 0; i < run.numTitleLines; ++i) {
        const auto at = static_cast<std::size_t>(i * titleLength);
        run.titleLines[static_cast<std::size_t>(i)] = titles.substr(at, blankLine.size());
        writeScreen(run.titleLines[static_cast<std::size_t>(i)]);
    }
    if (run.numTitleLines == 0) writeScreen("");
    writeScreen("");

    units::UnitSystem unitSystem;
    units::deserialize(unitSystem, unit);
    units::setBaseUnits(unitSystem.handle);
    file_units::freeUnit(unit);
}

void speciesRead() {
    const std::string name = problemFile("species");
    run.speciesPresent = file_units::exists(name);
    if (!run.speciesPresent) {
        writeScreen("No species file present");
        return;
    }
    writeScreen("Species file: " + name);
    const int unit = file_units::openRecordsRead(name);
    run.numMobileSpecies = file_units::readInteger(unit);
    run.numImmobileSpecies = file_units::readInteger(unit);
    file_units::checkCount(unit, run.numMobileSpecies, speciesNameLength + recordFrame,
                           "mobile species");
    file_units::checkCount(unit, run.numImmobileSpecies, speciesNameLength + recordFrame,
                           "immobile species");
    run.numSpecies = run.numMobileSpecies + run.numImmobileSpecies;
    ArrayHelpers::allocateArray(run.speciesNames, run.numSpecies, "Species arrays");
    ArrayHelpers::allocateArray(run.speciesFlagA, run.numSpecies, "Species arrays");
    ArrayHelpers::allocateArray(run.speciesFlagB, run.numSpecies, "Species arrays");
    for (std::string& species : run.speciesNames) species = readName(unit, speciesNameLength);
    for (std::vector<std::uint8_t>* flags : {&run.speciesFlagA, &run.speciesFlagB})
        for (std::int32_t s = 0; s < run.numMobileSpecies; ++s)
            (*flags)[static_cast<std::size_t>(s)] = file_units::readLogical(unit);
    run.anySpeciesFlagB =
        std::find(run.speciesFlagB.begin(), run.speciesFlagB.end(), 1) != run.speciesFlagB.end();
    file_units::freeUnit(unit);
}

void hmcFractionsRead() {
    const std::string name = problemFile("hmc");
    run.hmcPresent = file_units::exists(name);
    if (!run.hmcPresent) {
        writeScreen("No HMC file present");
        return;
    }
    writeScreen("HMC file: " + name);
    const int unit = file_units::openRecordsRead(name);
    // The records around the count are settings of the simulator that are not used here.
    for (int i = 0; i < 4; ++i) file_units::readInteger(unit);
    run.numHmcFractions = file_units::readInteger(unit);
    for (int i = 0; i < 2; ++i) file_units::readInteger(unit);
    constexpr std::int64_t bytesEach = fractionNameLength + 2 * 4 + 3 * recordFrame;
    file_units::checkCount(unit, run.numHmcFractions, bytesEach, "mixing fractions");
    ArrayHelpers::allocateArray(run.hmcFractionNames, run.numHmcFractions, "HMC frac_name array");
    for (std::string& fraction : run.hmcFractionNames) {
        fraction = StringHelpers::cut("f_" + readName(unit, fractionNameLength), 80);
        for (int i = 0; i < 2; ++i) file_units::readInteger(unit);
    }
    file_units::freeUnit(unit);
}

} // namespace model
