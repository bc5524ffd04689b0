#include "meshrake/plot_control/instruction_table.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/value_lines.hpp"

#include <algorithm>

namespace plot_control {

using model::Domain;
using model::run;
using namespace model::tags;

namespace {

constexpr std::string_view tagMark = "<domain>";

void readFlushInterval(Domain*) {
    readValues({{&run.tecplotFlushInterval}});
    run.tecplotFlushInterval = std::max(run.tecplotFlushInterval, 1);
}

void readTimeWindow(Domain*) {
    readValues({{&run.timeWindowMin, &run.timeWindowMax}});
    run.truncateTime = true;
}

void readTimeConversion(Domain*) {
    readValues({{&run.timeUnitOffset, &run.timeUnitFactor}});
    run.timeConversion = true;
}

// Reads a line for each of x, y and z.
void readRanges(std::array<double, 6>& r) {
    readValues({{&r[0], &r[1]}, {&r[2], &r[3]}, {&r[4], &r[5]}});
}

void readTruncation(Domain* domain) {
    readRanges(domain->truncateBounds);
    domain->truncateEnabled = true;
}

void readTruncationByLayer(Domain* domain) {
    std::array<double, 6>& bounds = domain->truncateBounds;
    std::array<std::int32_t, 2>& layers = domain->truncateLayers;
    readValues({{&bounds[0], &bounds[1]}, {&bounds[2], &bounds[3]}, {&layers[0], &layers[1]}});
    domain->truncateByLayerEnabled = true;
}

void readHeadComparison(Domain*) {
    readRanges(run.compareWindow);
    run.compareHeads = true;
}

void readSurfaceComparison(Domain*) {
    readRanges(run.compareWindow);
    run.compareSurfaceDepth = true;
}

constexpr std::string_view wholeSpace = "-1.0E+20  1.0E+20\n-1.0E+20  1.0E+20\n-1.0E+20  1.0E+20";
constexpr std::string_view wholeMesh =
    "-0.10000E+21 0.10000E+21\n-0.10000E+21 0.10000E+21\n-0.10000E+21 0.10000E+21";
constexpr std::string_view allLayers =
    "-0.10000E+21 0.10000E+21\n-0.10000E+21 0.10000E+21\n           0        1000";

// A row that omits these fields is for the first section, is a comment in the template, and has no
// values.
constexpr InstructionRow table[] = {
    {.words = "tecplot mode",
     .execute = [](Domain*) { run.tecplotMode = true; },
     .isActive = true,
     .effect = "Writes text data sets, which is the default."},
    {.words = "tecplot binary mode",
     .execute = [](Domain*) { run.tecplotBinary = true; },
     .effect = "Writes binary data sets."},
    {.words = "tecplot binary flush interval",
     .execute = readFlushInterval,
     .exampleValues = "1",
     .values = "n",
     .effect = "Flushes binary data sets after every n output times; less than 1 means 1."},
    {.words = "tecplot binary append",
     .execute = [](Domain*) { run.tecplotAppend = true; },
     .effect = "Adds output times to the binary data sets of an earlier run; only with `tecplot "
               "binary mode`."},
    {.words = "truncate time domain",
     .execute = readTimeWindow,
     .exampleValues = "0.0  1.0E+20",
     .values = "min max",
     .effect = "Writes only output times from min to max."},
    {.words = "number of digits for output file suffix",
     .execute = [](Domain*) { readOutputFileSuffix(); },
     .exampleValues = "4",
     .values = "n",
     .effect = "The index in file names has n digits, 4 to 10."},

    {.words = "truncate <domain> domain",
     .section = Section::domainBlock,
     .domains = anyDomain,
     .execute = readTruncation,
     .exampleValues = wholeMesh,
     .values = "3 lines: x, y, z range",
     .effect = "Writes only elements whose centre is inside the ranges."},
    {.words = "truncate <domain> domain by layer",
     .section = Section::domainBlock,
     .domains = anyDomain,
     .execute = readTruncationByLayer,
     .exampleValues = allLayers,
     .values = "3 lines: x range, y range, first and last layer",
     .effect = "Writes only elements of these layers whose centre is inside the ranges."},
    {.words = "compare heads 3d domain",
     .section = Section::domainBlock,
     .domains = pm,
     .execute = readHeadComparison,
     .exampleValues = wholeSpace,
     .observations = ".observed_heads",
     .values = "3 lines: x, y, z range",
     .effect = "Compares heads with the observations inside the ranges."},
    {.words = "compare gw table elevation",
     .section = Section::domainBlock,
     .domains = pm,
     .execute = [](Domain*) { run.compareWaterTable = true; },
     .observations = ".observed_heads",
     .effect = "Compares the elevation of the water table with observations."},
    {.words = "compare depth to gw table",
     .section = Section::domainBlock,
     .domains = pm,
     .execute = [](Domain*) { run.compareDepthToTable = true; },
     .observations = ".observed_d2gwt",
     .effect = "Compares the depth to the water table with observations."},
    {.words = "compare surface water depth",
     .section = Section::domainBlock,
     .domains = olf,
     .execute = readSurfaceComparison,
     .exampleValues = wholeSpace,
     .values = "3 lines: x, y, z range",
     .effect = "Compares water depths with the observations inside the ranges. `compare heads 3d "
               "domain` then uses these ranges too."},

    {.words = "simulation time unit conversion factor",
     .section = Section::afterFirst,
     .execute = readTimeConversion,
     .exampleValues = "0.0  1.0",
     .values = "offset factor",
     .effect = "Writes each time as time \\* factor + offset."},
    {.words = "plot pm zone isopach structure",
     .section = Section::afterFirst,
     .execute = [](Domain*) { run.plotIsopach = true; },
     .effect = "Plots the thickness of the zones of pm."},
    {.words = "plot pm depth below ground surface",
     .section = Section::afterFirst,
     .execute = [](Domain*) { run.plotDepthBelowSurface = true; },
     .effect = "Plots depths below the ground, and adds a column `Depth2Surf` to pm."},
    {.words = "interpolate depth to gw table",
     .section = Section::afterFirst,
     .execute = [](Domain*) { run.interpolateDepthToTable = true; },
     .effect = "Interpolates the water table between nodes, to where the pressure head is 0."},
};

} // namespace

std::span<const InstructionRow> instructionTable() {
    return table;
}

std::string instructionLine(const InstructionRow& row, std::string_view tag) {
    std::string line(row.words);
    if (const std::size_t at = line.find(tagMark); at != std::string::npos)
        line.replace(at, tagMark.size(), tag);
    return line;
}

} // namespace plot_control
