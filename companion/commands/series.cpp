#include "companion/commands/commands.hpp"
#include "companion/data_set/data_set_file.hpp"
#include "companion/screen/screen.hpp"
#include "companion/series/nearest.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace commands {

namespace {

using data_set_file::DataSet;
using data_set_file::File;
using data_set_file::Zone;

struct Options {
    std::string file;
    std::vector<std::string> variables;
    std::vector<std::int32_t> nodes, elements; // from 1
    std::vector<std::string> points;
};

// A node or element, and its text for a label.
struct Place {
    std::int64_t index = 0; // from 0
    std::string text;
};

// Values of one variable at one node or element.
struct Column {
    std::size_t variable = 0;
    bool ofElements = false;
    std::int64_t index = 0; // of the node or element, from 0
    std::string label;
    std::int64_t position = -1; // of the last value that was read, which later zones may share
    std::string value{};
};

std::string valueText(const Zone& zone, std::size_t variable, double value) {
    return zone.types[variable] == 1 ? screen::numberText(static_cast<float>(value))
                                     : screen::numberText(value);
}

std::string distanceText(double distance) {
    char digits[32];
    constexpr auto format = std::chars_format::general;
    return {digits, std::to_chars(digits, digits + sizeof digits, distance, format, 3).ptr};
}

series::Point pointOf(const std::string& text) {
    series::Point point{};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < 3; ++i) {
        if (i > 0 && (at == end || *at++ != ',')) throw std::invalid_argument(text);
        const auto [rest, fault] = std::from_chars(at, end, point[i]);
        if (fault != std::errc() || !std::isfinite(point[i])) throw std::invalid_argument(text);
        at = rest;
    }
    if (at != end) throw std::invalid_argument(text);
    return point;
}

std::string checkPoint(const std::string& text) {
    try {
        pointOf(text);
        return "";
    } catch (const std::invalid_argument&) {
        return "\"" + text + "\" is not a point such as 100,250.5,-3";
    }
}

std::size_t findVariable(const File& file, const std::vector<std::string>& names,
                         const std::string& name) {
    const auto found = std::ranges::find(names, name);
    if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
    std::string known;
    for (const std::string& variable : names) known += (known.empty() ? "" : ", ") + variable;
    throw std::runtime_error(file.path + ": no variable \"" + name + "\"; it has " + known);
}

// The nodes or elements of the options, with the text of each for a label.
std::vector<Place> placesOf(const File& file, const DataSet& set, const Options& options,
                            bool cells) {
    const std::string item = cells ? "element " : "node ";
    std::vector<Place> places;
    for (const std::int32_t number : cells ? options.elements : options.nodes)
        places.push_back({number - 1, item + std::to_string(number)});
    if (options.points.empty()) return places;
    std::vector<series::Point> points;
    for (const std::string& text : options.points) points.push_back(pointOf(text));
    const auto nearest = cells ? series::nearestElements : series::nearestNodes;
    const std::vector<series::Nearest> found = nearest(file, set, set.zones[0], points);
    for (std::size_t p = 0; p < found.size(); ++p) {
        std::string point = options.points[p];
        const std::string itemText = item + std::to_string(found[p].number + 1);
        if (found[p].isOutside)
            screen::writeError("meshrake-tool: the point " + point + " is outside the mesh, " +
                               distanceText(found[p].distance) + " from " + itemText);
        std::ranges::replace(point, ',', ' ');
        places.push_back({found[p].number, "at " + point + " (" + itemText + ')'});
    }
    return places;
}

std::vector<Column> columnsOf(const File& file, const DataSet& set, const Options& options) {
    const std::vector<std::string> names = data_set_file::uniqueNames(set.variables);
    std::array<std::optional<std::vector<Place>>, 2> places; // of nodes and of elements
    std::vector<Column> columns;
    for (const std::string& name : options.variables) {
        const std::size_t variable = findVariable(file, names, name);
        const bool cells = set.zones[0].centred[variable];
        std::optional<std::vector<Place>>& here = places[cells ? 1 : 0];
        if (!here) here = placesOf(file, set, options, cells);
        if (here->empty())
            throw std::runtime_error(file.path + ": \"" + name + "\" has values of " +
                                     (cells ? "elements; give --element" : "nodes; give --node") +
                                     " or --point");
        const auto unit = set.units.find(static_cast<std::int32_t>(variable) + 1);
        const std::string begin = name + (unit == set.units.end() ? "" : ' ' + unit->second) + ' ';
        for (const Place& place : *here)
            columns.push_back({variable, cells, place.index, begin + place.text});
    }
    return columns;
}

const std::string& valueAt(Column& column, const File& file, const Zone& zone, std::size_t number) {
    const std::size_t v = column.variable;
    if (zone.centred[v] != column.ofElements)
        throw std::runtime_error(file.path + ": zone " + std::to_string(number) +
                                 " has other locations of values than zone 1");
    if (column.index >= valueCount(zone, v))
        throw std::runtime_error(file.path + ": zone " + std::to_string(number) + " has no " +
                                 (zone.centred[v] ? "element " : "node ") +
                                 std::to_string(column.index + 1));
    const std::int64_t position = zone.valuesAt[v] + column.index * valueBytes(zone, v);
    if (position != column.position) {
        column.value = valueText(zone, v, readValue(file, zone, v, column.index));
        column.position = position;
    }
    return column.value;
}

// A field in quotes if it contains a comma or a quote.
std::string field(const std::string& text) {
    const std::string shown = screen::printable(text);
    if (shown.find_first_of(",\"") == std::string::npos) return shown;
    std::string quoted = "\"";
    for (const char c : shown) {
        if (c == '"') quoted += c;
        quoted += c;
    }
    return quoted + '"';
}

int writeSeries(const Options& options) {
    File file(options.file);
    const DataSet set = scan(file);
    if (set.zones.empty()) throw std::runtime_error(file.path + ": no complete zone");
    std::vector<Column> columns = columnsOf(file, set, options);

    const auto unit = set.aux.find("Time_Base_Unit");
    std::string out = unit == set.aux.end() ? "Time" : field("Time (" + unit->second + ')');
    for (const Column& column : columns) out += ',' + field(column.label);
    for (std::size_t z = 0; z < set.zones.size(); ++z) {
        const Zone& zone = set.zones[z];
        out += '\n';
        if (zone.strand >= 0) out += screen::numberText(zone.time);
        for (Column& column : columns) out += ',' + valueAt(column, file, zone, z + 1);
    }
    screen::write(out + '\n');
    return 0;
}

} // namespace

Run addSeries(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    const CLI::Range positive(1, std::numeric_limits<std::int32_t>::max(), "POSITIVE");
    app.add_option("FILE", options->file, "Binary data set (.szplt)")->required();
    app.add_option("--variable", options->variables, "Name of a variable, such as Head")
        ->required()
        ->allow_extra_args(false);
    app.add_option("--node", options->nodes, "Number of a node in the data set, from 1")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(positive);
    app.add_option("--element", options->elements, "Number of an element in the data set, from 1")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(positive);
    app.add_option("--point", options->points,
                   "x,y,z: the nearest node, or the element with the nearest centre")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkPoint, "X,Y,Z"));
    app.footer("Writes the values at all output times as comma-separated values. Options can be\n"
               "repeated; each variable has a column for each place where it has values.");
    app.parse_complete_callback([options] {
        if (options->nodes.empty() && options->elements.empty() && options->points.empty())
            throw CLI::RequiredError("--node, --element or --point");
    });
    return [options] { return writeSeries(*options); };
}

} // namespace commands
