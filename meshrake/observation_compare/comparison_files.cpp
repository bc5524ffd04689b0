#include "meshrake/observation_compare/comparison_files.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/number_formats.hpp"
#include "tvncommon/units/units.hpp"

#include <initializer_list>

namespace observation_compare {

using file_units::writeLine;
using model::run;

namespace {

int create(std::string_view file) {
    return file_units::openTextReplace(model::problemFile(file), io_layer::Flush::inBlocks);
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

// All variables are lengths, like the coordinates.
void writeUnits(int unit, std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names)
        writeLine(unit, "# " + std::string(name) + " units: " + units::parseUnits("L"));
    for (std::size_t number = 1; number <= names.size(); ++number)
        writeLine(unit, "VARAUXDATA " + std::to_string(number) +
                            " Units=" + quoted(units::parseUnits("L")));
}

void writeZone(int unit, std::string_view title, std::string_view word = "ZONE") {
    writeLine(unit, std::string(word) + " T=" + quoted(title));
}

void writePair(int unit, double first, double second) {
    writeLine(unit, ' ' + number_formats::wideRealText(first) + ' ' +
                        number_formats::wideRealText(second));
}

std::string fixedField(double value) {
    constexpr int width = 10;
    std::string field(width, ' ');
    number_formats::writeFixedField(value, width, 4, field.data());
    return field;
}

double rSquaredOf(const Comparison& comparison) {
    const model::ObservationSet& set = run.observations;
    const double mean = comparison.sumObserved / comparison.pointCount;
    double sumSquaredTotal = 0;
    for (std::size_t i = 0; i < set.obsValue.size(); ++i) {
        if (set.obsElement[i] == -1) continue;
        const double difference = set.obsValue[i] - mean;
        sumSquaredTotal += difference * difference;
    }
    return 1 - comparison.sumSquaredError / sumSquaredTotal;
}

} // namespace

Comparison openComparison(const ComparisonTexts& texts) {
    Comparison c;
    c.texts = texts;
    c.plotUnit = create(texts.plotFile);
    c.scatterUnit = create(texts.scatterFile);
    const std::string both = quoted(texts.observed) + ',' + quoted(texts.simulated);

    writeLine(c.plotUnit, "TITLE = " + quoted(run.problemPrefix));
    writeLine(c.plotUnit, "VARIABLES = " + both);
    plot_data::tecplotMetadataAscii(c.plotUnit);
    writeUnits(c.plotUnit, {texts.observed, texts.simulated});
    writeZone(c.plotUnit, texts.dataZone);

    writeLine(c.scatterUnit, texts.scatterTitle);
    writeLine(c.scatterUnit, "VARIABLES = \"X\",\"Y\",\"Z\"," + both + ",\"Diff\"");
    plot_data::tecplotMetadataAscii(c.scatterUnit);
    writeUnits(c.scatterUnit, {"X", "Y", "Z", texts.observed, texts.simulated, "Diff"});
    writeZone(c.scatterUnit, "data");
    return c;
}

void addPoint(Comparison& c, const box_tree::Point& position, double observed, double simulated) {
    ++c.pointCount;
    c.sumObserved += observed;
    const double error = observed - simulated;
    c.sumSquaredError += error * error;
    for (const double value : {observed, simulated}) {
        if (value < c.lowest) c.lowest = value;
        if (value > c.highest) c.highest = value;
    }
    writePair(c.plotUnit, observed, simulated);
    std::string line;
    for (const double value :
         {position[0], position[1], position[2], observed, simulated, simulated - observed})
        line += number_formats::exponentField(value, 20, 8);
    writeLine(c.scatterUnit, line);
}

void closeComparison(Comparison& c) {
    const double rSquared = rSquaredOf(c);
    writeZone(c.plotUnit, "straight line");
    writePair(c.plotUnit, c.lowest, c.lowest);
    writePair(c.plotUnit, c.highest, c.highest);
    writeZone(c.plotUnit, "R<sup>2</sup> =" + fixedField(rSquared), c.texts.lastZone);
    writePair(c.plotUnit, rSquared, rSquared);
    file_units::freeUnit(c.plotUnit);
    file_units::freeUnit(c.scatterUnit);
    run.observations = {};
}

} // namespace observation_compare
