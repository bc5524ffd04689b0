// Prints a binary or a text data set, for inspection and for comparison of the two forms:
//
//     print_data_set FILE [--headers]
//
// The lines are those of a text data set; every array follows the name of its variable, five values
// to a row. --headers leaves out the arrays. An invalid file ends the program with status 1, with
// the position of the first fault in a binary file.

#include "companion/data_set/data_set_file.hpp"
#include "tests/support/text_data_set.hpp"

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr const char* typeWords[] = {"", "SINGLE", "DOUBLE", "LONGINT"};
constexpr const char* zoneTypes[] = {
    "", "FELINESEG", "FETRIANGLE", "FEQUADRILATERAL", "FETETRAHEDRON", "FEBRICK"};
constexpr std::size_t slotsOfType[] = {1, 2, 3, 4, 4, 8};

// Numbers, from 1, of the variables in a list, or nothing for none.
template<class List>
std::string numbersOf(const List& list, const char* before, const char* after) {
    std::string numbers;
    for (std::size_t v = 0; v < list.size(); ++v)
        if (list[v]) numbers += (numbers.empty() ? "" : ",") + std::to_string(v + 1);
    return numbers.empty() ? "" : before + numbers + after;
}

void printZoneLine(const data_set_file::Zone& zone) {
    std::printf("ZONE T=\"%s\"", zone.title.c_str());
    if (zone.strand >= 0) std::printf(", STRANDID=%d, SOLUTIONTIME=%.17g", zone.strand, zone.time);
    std::printf(", NODES=%lld, ELEMENTS=%lld, ZONETYPE=%s%s%s", static_cast<long long>(zone.nodes),
                static_cast<long long>(zone.elements), zoneTypes[zone.type],
                numbersOf(zone.centred, ", VARLOCATION=([", "]=CELLCENTERED)").c_str(),
                numbersOf(zone.shares, ", VARSHARELIST=([", "])").c_str());
    if (zone.connectivityShare > 0)
        std::printf(", CONNECTIVITYSHAREZONE=%d", zone.connectivityShare);
    std::printf("\nDT=(");
    for (std::size_t v = 0; v < zone.types.size(); ++v)
        std::printf("%s%s", v > 0 ? "," : "", typeWords[zone.types[v]]);
    std::printf(")\n");
}

template<class Value>
void printRows(const std::vector<Value>& values, std::size_t perRow, const char* format) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::printf(format, values[i]);
        std::putchar((i + 1) % perRow == 0 || i + 1 == values.size() ? '\n' : ' ');
    }
}

void print(const data_set_file::DataSet& set, bool headersOnly) {
    std::printf("TITLE = \"%s\"\nVARIABLES = ", set.title.c_str());
    for (std::size_t v = 0; v < set.variables.size(); ++v)
        std::printf("%s\"%s\"", v > 0 ? "," : "", set.variables[v].c_str());
    std::printf("\n");
    for (const auto& [name, value] : set.aux)
        std::printf("DATASETAUXDATA %s=\"%s\"\n", name.c_str(), value.c_str());
    for (const auto& [variable, unit] : set.units)
        std::printf("VARAUXDATA %d Units=\"%s\"\n", variable, unit.c_str());
    for (const data_set_file::Zone& zone : set.zones) {
        printZoneLine(zone);
        if (headersOnly) continue;
        for (std::size_t v = 0; v < set.variables.size(); ++v) {
            if (zone.shares[v] > 0) continue;
            std::printf("# %s\n", set.variables[v].c_str());
            printRows(zone.values[v], 5, "%.17g");
        }
        if (zone.connectivityShare > 0) continue;
        std::printf("# element node lists\n");
        printRows(zone.elementNodes, slotsOfType[zone.type], "%d");
    }
    std::printf("# %lld bytes of padding for zone headers, %lld bytes after the last zone\n",
                static_cast<long long>(set.padding), static_cast<long long>(set.trailing));
}

data_set_file::DataSet read(const char* path) {
    std::ifstream in(path, std::ios::binary);
    const std::string contents(std::istreambuf_iterator<char>(in), {});
    if (!contents.starts_with("TITLE")) return data_set_file::read(path);
    text_data_set::Text text = text_data_set::parse(contents);
    if (!text.fault.empty()) throw std::runtime_error(text.fault);
    return std::move(text.set);
}

} // namespace

int main(int argc, char** argv) {
    const bool headersOnly = argc == 3 && std::string_view(argv[2]) == "--headers";
    if (argc != 2 && !headersOnly) {
        std::fprintf(stderr, "usage: print_data_set FILE [--headers]\n");
        return 2;
    }
    try {
        print(read(argv[1]), headersOnly);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s: %s\n", argv[1], fault.what());
        return 1;
    }
    return 0;
}
