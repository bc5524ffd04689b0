// Prints docs/variables.md from the tables of variables and options, or checks that it is current:
//
//     print_variables > docs/variables.md
//     print_variables --check docs/variables.md
//
// A row of the table with steps of its own says less than its variable does, so it needs a note
// here; without one, and for a note without a row, the program ends with status 1.

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
    {"zone", "Always there: without a file, the zones of the element list. A file at a later time "
             "brings new ones."},
    {"nodeNumber", "Number of the pm node under each node, from the mesh. Not in a problem with "
                   "cutoff walls."},
    {"layerNumber", "Layer of the element, counted from the bottom, from the mesh."},
    {"columnNumber", "Place of the element in its layer, from the mesh."},
    {"thickness", "Mean height of the element: the differences between its upper and lower nodes, "
                  "summed, then divided by their number."},
    {"depth2Surf", "Height of the ground above the node. Only with the instruction "
                   "`plot pm depth below ground surface`."},
    {"head", "Two or three columns. Behind `Head` follow in olf and chan `Depth`, the water depth, "
             "and `LogDepth`, its common logarithm with 1.0E-8 for less (both 32-bit); in the "
             "other domains `Pressure Head`, the head above the node (64-bit), unless "
             "`no <domain> pressure heads` switches it off. They have the unit of `Head`."},
    {"depth2gwt", "Height of the node above the water table nearest to it in its column, negative "
                  "below it; computed from the heads, so there is none without them. Not for "
                  "elements of 4 nodes."},
    {"depth2gwt2d", "Depth of the lowest water table below the top node, the same at all nodes of "
                    "a column. Conditions as for `Depth2GWT`."},
    {"elemK", "Three columns, or all six when the message in the file's header is 3."},
    {"et3dEvap", "The file of the first output time is spelt `ETPMEvap3D_`, those of later ones "
                 "`ETPmEvap3D_`; both spellings are tried."},
    {"concSolid", "Species made of particles only."},
    {"massSorbed", "Species that stand for heat only."},
    {"hmc",
     "The files lie in the folder `hmc` of the working directory: "
     "`./hmc/<prefix>o.hmc_<domain>.<fraction>.<index>`, with `mixing_ratio` and `hmc_error` "
     "for the last two."},
    {"redoxCapacity", "File `conc_<domain>.<species>-Redox` of the first species; at later "
                      "times that of the last mobile species that has one."},
    {"rainSnowmelt", "Files `snowdepth`, `snowmelt`, `liquid_p`, `solid_p` and `snowcover`, whose "
                     "names have no domain. The first four hold values of elements, `snowcover` "
                     "values of nodes. Depth and elevation are lengths (`L`), the others rates "
                     "(`L * T^-1`). At later times `snowdepth` decides for all five."},
    {"aperture", "From the list of fracture elements."},
    {"tvTopo", "Elevations of a ground that moves. From then on depths and pressure heads go by "
               "them, with the exception of `LogDepth`. `tvTopoZAbsDiff`, in pm alone, is the "
               "elevation of the mesh minus the current one."},
    {"tvTopoZone", "Element zones that move with the ground."},
};

std::string_view noteOf(std::string_view key) {
    const auto* note = std::find_if(std::begin(notes), std::end(notes),
                                    [&](const Note& n) { return n.key == key; });
    return note == std::end(notes) ? std::string_view() : note->text;
}

bool plain(const VariableRow& row) {
    return !row.init && !row.read && !row.write;
}

// Tells of notes and rows that do not belong together.
bool notesFit(std::span<const VariableRow> table) {
    bool fit = true;
    for (const VariableRow& row : table) {
        const bool hasColumns = plot_data::columnCount(row) > 0;
        if (plain(row) || !hasColumns || !noteOf(row.key).empty()) continue;
        std::fprintf(stderr, "print_variables: \"%s\" has steps of its own and needs a note\n",
                     std::string(row.key).c_str());
        fit = false;
    }
    for (const Note& note : notes) {
        const auto isMeant = [&](const VariableRow& row) { return row.key == note.key; };
        if (std::any_of(table.begin(), table.end(), isMeant)) continue;
        std::fprintf(stderr, "print_variables: the note \"%s\" has no row\n",
                     std::string(note.key).c_str());
        fit = false;
    }
    return fit;
}

// What the columns and files of a row are called. The members of a family go by their own names.
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

// The control file lines that clear the row's option.
std::string switchesOf(const VariableRow& row) {
    std::string list;
    for (const model::OptionRow& option : model::optionTable)
        if (row.option != model::Option::none && option.cleared == row.option)
            list += (list.empty() ? "" : ", ") + code(model::optionLabel(option, "<domain>"));
    return list;
}

// A row without a name of its own shows the columns that the variable of this key has in pm.
const VariableRow& namedRow(const VariableRow& row) {
    if (!namesOf(row).empty()) return row;
    for (const VariableRow& other : variables::variableTable())
        if (other.key == row.key) return other;
    return row;
}

constexpr std::string_view introduction =
    R"(<!-- Made by tools/print_variables from the tables of variables. Do not edit it here. -->
# Variables

All variables that meshrake knows, in the order of the columns of a plot file. The first output time
decides which of them a plot file has: those of its domain whose file is there and which no line of
the control file switches off.

- **File** is what stands between `<prefix>o.` and `.<index>` in the name of the result file, whose
  bytes are told in [formats.md](formats.md). Where it is empty, see the note.
- **Values** tells their type in the result file and in the plot file, and whether there is one for
  each node or one for each element.
- **Unit** is a dimension expression: M mass, L length, T time, K temperature, Nc number of
  particles; 1 is none. The plot file has it in the units of the problem. Where it is empty, the plot
  file tells no unit.
- **Times** tells which output times have a file: `every`; `first`, read at the first output time
  of the run and the same from then on; `0001`, that of time index 1, whatever the time.
- **Switched off by** is the line of the control file, with the domain for `<domain>`. Where it is
  empty, no line does.
- `<species>` and `<fraction>` stand for the name of each solute or mixing fraction: there is one
  file and one column for each, and the first one's file decides for all.

)";

constexpr std::string_view commonNodeIntroduction = R"(
## Domains that share the nodes of pm

They have fewer columns. Where File is empty, the values are those of pm at the nodes of the domain,
and the column is there when pm has it; the coordinates and the aperture come from the mesh.

)";

void printTable(std::ostringstream& out, std::span<const VariableRow> table) {
    out << "| Variables | Domains | File | Values | Unit | Times | Switched off by |\n"
        << "|---|---|---|---|---|---|---|\n";
    for (const VariableRow& row : table) {
        const std::string names = namesOf(namedRow(row));
        if (names.empty()) continue; // a step between the columns
        out << "| " << names << " | " << page::domainList(row.domains) << " | " << fileOf(row)
            << " | " << valuesOf(row) << " | " << code(row.unit) << " | " << timesOf(row) << " | "
            << switchesOf(row) << " |\n";
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
    if (!notesFit(variables::variableTable())) return 1;
    return page::printOrCheck(argc, argv, pageText());
}
