// Prints docs/variables.md from the tables of variables and options, or checks that it is current:
//
//     print_variables > docs/variables.md
//     print_variables --check docs/variables.md
//
// A row with functions of its own does not describe its variable completely, so it needs a note
// here. A missing note, or a note without a row, ends the program with status 1.

#include "meshrake/variables/common_node_table.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tools/page.hpp"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <span>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using model::DataType;
using page::code;
using plot_data::Family;
using plot_data::Location;
using plot_data::Timing;
using plot_data::VariableRow;

struct Note {
    std::string_view key;
    std::string_view text;
};

constexpr Note notes[] = {
    {"coordinates", "Coordinates of the nodes, from the mesh."},
    {"zone",
     "It is in every plot file. Without a result file, the zones are those of the element list. A "
     "result file of a later time replaces them."},
    {"nodeNumber", "Number of the pm node at each node, from the mesh. It does not exist in a "
                   "problem with cutoff "
                   "walls."},
    {"layerNumber", "Layer of the element, counted from the bottom, from the mesh."},
    {"columnNumber", "Position of the element in its layer, from the mesh."},
    {"thickness", "Mean height of the element: the differences between its upper and lower nodes, "
                  "summed, then divided by their number."},
    {"depth2Surf", "Height of the ground surface above the node. Only with the instruction "
                   "`plot pm depth below ground surface`."},
    {"head",
     "Two or three columns. In olf and chan `Head` is followed by `Depth`, the water depth, "
     "and `LogDepth`, its common logarithm with a minimum depth of 1.0E-8 (both 32-bit). In the "
     "other domains it is followed by `Pressure Head`, the head minus the elevation of the "
     "node (64-bit), unless `no <domain> pressure heads` disables it. They have the unit "
     "of `Head`."},
    {"depth2gwt",
     "Height of the node above the nearest water table of its column, negative below it. It is "
     "computed from the heads and does not exist without them, nor for elements of 4 nodes."},
    {"depth2gwt2d", "Depth of the lowest water table below the top node, the same at all nodes of "
                    "a column. Conditions as for `Depth2GWT`."},
    {"elemK", "Three columns, or all six if the message in the file's header is 3."},
    {"et3dEvap", "The file of the first output time is spelt `ETPMEvap3D_`, those of later times "
                 "`ETPmEvap3D_`. Both spellings are tried."},
    {"concSolid", "Only for species that consist of particles."},
    {"massSorbed", "Only for species that represent heat."},
    {"hmc",
     "The files are in the folder `hmc` of the working directory: "
     "`./hmc/<prefix>o.hmc_<domain>.<fraction>.<index>`, with `mixing_ratio` and `hmc_error` "
     "for the last two."},
    {"redoxCapacity",
     "The file is `conc_<domain>.<species>-Redox` of the first species. At later times it is that "
     "of the last mobile species, and without it the column is shared."},
    {"rainSnowmelt", "Files `snowdepth`, `snowmelt`, `liquid_p`, `solid_p` and `snowcover`, whose "
                     "names have no domain. The first four have values of elements, `snowcover` "
                     "has values of nodes. Depth and elevation are lengths (`L`), the others are "
                     "rates (`L * T^-1`). At later times all five are read if `snowdepth` exists."},
    {"aperture", "From the list of fracture elements."},
    {"tvTopo", "Elevations of a topography that changes with time. Depths and pressure heads use "
               "them, except for `LogDepth`. `tvTopoZAbsDiff`, only in pm, is the elevation of the "
               "mesh minus the current elevation."},
    {"tvTopoZone", "Element zones that change with the topography."},
};

std::string_view noteOf(std::string_view key) {
    const auto* note = std::find_if(std::begin(notes), std::end(notes),
                                    [&](const Note& n) { return n.key == key; });
    return note == std::end(notes) ? std::string_view() : note->text;
}

bool isPlain(const VariableRow& row) {
    return !row.init && !row.read && !row.write;
}

// Reports missing notes and notes without a row. Returns true if there are none.
bool checkNotes(std::span<const VariableRow> table) {
    bool complete = true;
    for (const VariableRow& row : table) {
        const bool hasColumns = plot_data::columnCount(row) > 0;
        if (isPlain(row) || !hasColumns || !noteOf(row.key).empty()) continue;
        std::fprintf(stderr, "print_variables: \"%s\" has functions of its own and needs a note\n",
                     std::string(row.key).c_str());
        complete = false;
    }
    for (const Note& note : notes) {
        const auto belongs = [&](const VariableRow& row) { return row.key == note.key; };
        if (std::any_of(table.begin(), table.end(), belongs)) continue;
        std::fprintf(stderr, "print_variables: the note \"%s\" has no row\n",
                     std::string(note.key).c_str());
        complete = false;
    }
    return complete;
}

// A family has one variable per species or mixing fraction, with the name of that member.
bool isFamily(const VariableRow& row) {
    return row.family != Family::oneFile;
}

std::string memberOf(const VariableRow& row) {
    return row.family == Family::fractions ? "<fraction>" : "<species>";
}

std::string namesOf(const VariableRow& row) {
    if (row.family == Family::fractions)
        return code(memberOf(row)) + ", `HMC Mixing Ratio`, `HMC Error`";
    if (isFamily(row)) return code(memberOf(row) + std::string(row.columns[0].name));
    std::string list;
    for (std::size_t c = 0; c < plot_data::columnCount(row); ++c)
        list += (c == 0 ? "" : ", ") + code(row.columns[c].name);
    return list;
}

std::string fileOf(const VariableRow& row) {
    if (row.stem.empty()) return "";
    std::string file(row.stem);
    if (row.stem.ends_with('_')) file += "<domain>";
    if (isFamily(row)) file += "." + memberOf(row);
    return code(file);
}

std::string valuesOf(const VariableRow& row) {
    const char* type = row.type == DataType::single  ? "32-bit real"
                       : row.type == DataType::real8 ? "64-bit real"
                                                     : "integer";
    return std::string(type) + (row.location == Location::node ? ", node" : ", element");
}

std::string timesOf(const VariableRow& row) {
    switch (row.timing) {
    case Timing::firstPass:
        return "first";
    case Timing::property:
        return "0001";
    default:
        return row.stem.empty() ? "" : "every";
    }
}

// The control file lines that disable the row's option.
std::string disablingLines(const VariableRow& row) {
    std::string list;
    for (const model::OptionRow& option : model::optionTable)
        if (row.option != model::Option::none && option.cleared == row.option)
            list += (list.empty() ? "" : ", ") + code(model::optionLabel(option, "<domain>"));
    return list;
}

// A row without column names has those of the variable with the same key in the variable table.
const VariableRow& namedRow(const VariableRow& row) {
    if (!namesOf(row).empty()) return row;
    for (const VariableRow& other : variables::variableTable())
        if (other.key == row.key) return other;
    return row;
}

constexpr std::string_view introduction =
    R"(<!-- Generated by tools/print_variables from the tables of variables. Do not edit. -->
# Variables

All variables of meshrake, in the order of the columns of a plot file. A plot file has the variables
of its domain whose file exists at the first output time, except those that a line of the control
file disables.

- **File** is the part of the name of the result file between `<prefix>o.` and `.<index>`.
  [formats.md](formats.md) describes its format. If it is empty, see the note.
- **Values** is their type in the result file and in the plot file, and their location: nodes or
  elements.
- **Unit** is a dimension expression: M mass, L length, T time, K temperature, Nc number of
  particles, 1 without dimension. The plot file has it in the units of the problem. If it is empty,
  the plot file has no unit.
- **Times** is `every`: a file for every output time; `first`: read at the first output time of the
  run, for all times; or `0001`: the file of time index 1, for all times.
- **Disabled by** is the line of the control file, with the tag of the domain for `<domain>`. If it
  is empty, the variable cannot be disabled.
- `<species>` and `<fraction>` are the name of a solute or mixing fraction. Each has a file and a
  column. All of them are in the plot file if the file of the first exists.

)";

constexpr std::string_view commonNodeIntroduction = R"(
## Domains that share the nodes of pm

They have fewer columns. If **File** is empty, the values are those of pm at the nodes of the domain,
and the plot file has the column if pm has it. The coordinates and the aperture are from the mesh.

)";

void printTable(std::ostringstream& out, std::span<const VariableRow> table) {
    out << "| Variables | Domains | File | Values | Unit | Times | Disabled by |\n"
        << "|---|---|---|---|---|---|---|\n";
    for (const VariableRow& row : table) {
        const std::string names = namesOf(namedRow(row));
        if (names.empty()) continue; // a row without columns is a step between variables
        out << "| " << names << " | " << page::domainList(row.domains) << " | " << fileOf(row)
            << " | " << valuesOf(row) << " | " << code(row.unit) << " | " << timesOf(row) << " | "
            << disablingLines(row) << " |\n";
    }
}

std::string pageText() {
    const std::span<const VariableRow> table = variables::variableTable();
    std::ostringstream out;
    out << introduction << "## Domains with nodes of their own, and pm\n\n";
    printTable(out, table);
    out << "\n### Notes\n\n";
    for (const VariableRow& row : table)
        if (!noteOf(row.key).empty())
            out << "- " << namesOf(row) << ": " << noteOf(row.key) << "\n";
    out << commonNodeIntroduction;
    printTable(out, variables::commonNodeTable());
    return out.str();
}

} // namespace

int main(int argc, char** argv) {
    if (!checkNotes(variables::variableTable())) return 1;
    return page::printOrCheck(argc, argv, pageText());
}
