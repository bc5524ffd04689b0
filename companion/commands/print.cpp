// Prints the lines of a text data set. Every array follows the name of its variable.

#include "companion/commands/commands.hpp"
#include "companion/data_set/data_set_file.hpp"
#include "companion/screen/screen.hpp"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <memory>
#include <string>

namespace commands {

namespace {

using data_set_file::DataSet;
using data_set_file::File;
using data_set_file::Zone;
using screen::printable;

struct Options {
    std::string file;
    bool headersOnly = false;
};

constexpr const char* typeWords[] = {"", "SINGLE", "DOUBLE", "LONGINT"};
constexpr const char* zoneTypes[] = {
    "", "FELINESEG", "FETRIANGLE", "FEQUADRILATERAL", "FETETRAHEDRON", "FEBRICK"};
constexpr std::int64_t valuesPerRow = 5;
constexpr std::size_t blockBytes = 65536;

// Returns the numbers, from 1, of the variables in a list, between two texts. Without variables it
// returns an empty text.
template<class List>
std::string numbersOf(const List& list, const char* before, const char* after) {
    std::string numbers;
    for (std::size_t v = 0; v < list.size(); ++v)
        if (list[v]) numbers += (numbers.empty() ? "" : ",") + std::to_string(v + 1);
    return numbers.empty() ? "" : before + numbers + after;
}

// A finite real has 17 significant digits, without trailing zeros.
void append(std::string& out, double value) {
    if (!std::isfinite(value)) {
        out += screen::numberText(value);
        return;
    }
    char digits[32];
    out.append(
        digits,
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 17).ptr);
}

void append(std::string& out, std::int32_t value) {
    out += std::to_string(value);
}

void printHeader(const DataSet& set) {
    std::string out = "TITLE = \"" + printable(set.title) + "\"\nVARIABLES = ";
    for (std::size_t v = 0; v < set.variables.size(); ++v)
        out += (v > 0 ? ",\"" : "\"") + printable(set.variables[v]) + '"';
    out += '\n';
    for (const auto& [name, value] : set.aux)
        out += "DATASETAUXDATA " + printable(name) + "=\"" + printable(value) + "\"\n";
    for (const auto& [variable, unit] : set.units)
        out += "VARAUXDATA " + std::to_string(variable) + " Units=\"" + printable(unit) + "\"\n";
    screen::write(out);
}

void printZoneLines(const Zone& zone) {
    std::string out = "ZONE T=\"" + printable(zone.title) + '"';
    if (zone.strand >= 0) {
        out += ", STRANDID=" + std::to_string(zone.strand) + ", SOLUTIONTIME=";
        append(out, zone.time);
    }
    out += ", NODES=" + std::to_string(zone.nodes) + ", ELEMENTS=" + std::to_string(zone.elements) +
           ", ZONETYPE=" + zoneTypes[zone.type] +
           numbersOf(zone.centred, ", VARLOCATION=([", "]=CELLCENTERED)") +
           numbersOf(zone.shares, ", VARSHARELIST=([", "])");
    if (zone.connectivityShare > 0)
        out += ", CONNECTIVITYSHAREZONE=" + std::to_string(zone.connectivityShare);
    out += "\nDT=(";
    for (std::size_t v = 0; v < zone.types.size(); ++v) {
        if (v > 0) out += ',';
        out += typeWords[zone.types[v]];
    }
    screen::write(out + ")\n");
}

template<class Value>
void printRows(const std::string& label, const std::vector<Value>& values, std::int64_t perRow) {
    std::string out = "# " + printable(label) + '\n';
    for (std::int64_t i = 0; i < std::ssize(values); ++i) {
        append(out, values[static_cast<std::size_t>(i)]);
        out += (i + 1) % perRow == 0 || i + 1 == std::ssize(values) ? '\n' : ' ';
        if (out.size() < blockBytes) continue;
        screen::write(out);
        out.clear();
    }
    screen::write(out);
}

void printArrays(const File& file, const DataSet& set, const Zone& zone) {
    for (std::size_t v = 0; v < set.variables.size(); ++v)
        if (zone.shares[v] == 0)
            printRows(set.variables[v], readCheckedValues(file, zone, v), valuesPerRow);
    if (zone.connectivityShare == 0)
        printRows("element node lists", readElementNodes(file, zone),
                  std::max<std::int64_t>(cornersOf(zone), 1));
}

int print(const Options& options) {
    File file(options.file);
    const DataSet set = scan(file);
    printHeader(set);
    for (const Zone& zone : set.zones) {
        printZoneLines(zone);
        if (!options.headersOnly) printArrays(file, set, zone);
    }
    screen::write("# " + std::to_string(set.padding) + " bytes of padding for zone headers, " +
                  std::to_string(set.trailing) + " bytes after the last zone\n");
    return 0;
}

} // namespace

Run addPrint(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    app.add_option("FILE", options->file, "Binary data set (.szplt)")->required();
    app.add_flag("--headers", options->headersOnly, "Leave out values and element lists");
    return [options] { return print(*options); };
}

} // namespace commands
