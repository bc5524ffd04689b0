#include "tests/support/data_set.hpp"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>
#include <stdexcept>

namespace data_set {

using data_set_file::DataSet;
using data_set_file::Zone;

std::string between(const std::string& text, const std::string& first, const std::string& last) {
    const std::size_t at = text.find(first);
    if (at == std::string::npos) return "";
    const std::size_t begin = at + first.size();
    return text.substr(begin, text.find(last, begin) - begin);
}

std::vector<std::string> split(const std::string& list) {
    std::vector<std::string> items;
    std::istringstream in(list);
    for (std::string item; std::getline(in, item, ',');) items.push_back(item);
    return items;
}

std::string join(const std::vector<std::string>& parts) {
    std::string list;
    for (const std::string& part : parts) list += (list.empty() ? "" : ",") + part;
    return list;
}

namespace {

// Calls `act` for each variable of a list, with its number from 0.
template<class Act>
void forVariables(const std::string& list, std::size_t variables, Act act) {
    for (const std::string& number : split(list)) {
        const std::size_t v = std::stoul(number) - 1;
        if (v < variables) act(v);
    }
}

Zone zoneOf(const std::string& line, std::size_t variables) {
    static const std::vector<std::string> types{
        "", "FELINESEG", "FETRIANGLE", "FEQUADRILATERAL", "FETETRAHEDRON", "FEBRICK"};
    Zone zone;
    zone.title = between(line, "ZONE T=\"", "\"");
    const std::string type = between(line, "ZONETYPE=", ","), time = between(line, "TIME=", ",");
    zone.type = static_cast<std::int32_t>(std::ranges::find(types, type) - types.begin());
    zone.strand = time.empty() ? -1 : 1;
    zone.time = std::strtod(time.c_str(), nullptr);
    zone.nodes = std::stol(between(line, "NODES=", ","));
    zone.elements = std::stol(between(line, "ELEMENTS=", ","));
    zone.centred.assign(variables, false);
    zone.shares.assign(variables, 0);
    zone.values.resize(variables);
    forVariables(between(line, "VARLOCATION=([", "]"), variables,
                 [&](std::size_t v) { zone.centred[v] = true; });
    forVariables(between(line, "VARSHARELIST=([", "]"), variables,
                 [&](std::size_t v) { zone.shares[v] = 1; });
    zone.connectivityShare = line.find("CONNECTIVITYSHAREZONE=1") != std::string::npos;
    return zone;
}

std::string faultOf(const Text& text, std::size_t z) {
    constexpr std::int64_t nodesOfTypes[] = {0, 2, 3, 4, 4, 8};
    const std::vector<std::string>& names = text.set.variables;
    const Zone& zone = text.set.zones[z];
    if (std::set(names.begin(), names.end()).size() != names.size()) return "a repeated name";
    if (!zone.types.empty() && zone.types.size() != names.size()) return "the number of types";
    const auto own = static_cast<std::size_t>(std::ranges::count(zone.shares, 0));
    if (text.labels[z].size() != own)
        return std::to_string(text.labels[z].size()) + " arrays of " + std::to_string(own);
    for (std::size_t v = 0; v < names.size(); ++v) {
        const std::int64_t count = zone.centred[v] ? zone.elements : zone.nodes;
        if (std::ssize(zone.values[v]) != (zone.shares[v] > 0 ? 0 : count))
            return "the count of " + names[v];
    }
    const std::int64_t slots = nodesOfTypes[zone.type] * zone.elements;
    if (std::ssize(zone.elementNodes) != (zone.connectivityShare ? 0 : slots))
        return "the count of element nodes";
    for (const std::int32_t node : zone.elementNodes)
        if (node < 1 || node > zone.nodes) return "an element with node " + std::to_string(node);
    return "";
}

// Reads a line after the first one of a zone: types, a comment that begins an array, or values.
void readZoneLine(Text& text, const std::string& line, std::vector<double>*& values) {
    static std::vector<double> surplus;
    Zone& zone = text.set.zones.back();
    if (line.starts_with("DT=(")) {
        for (const std::string& word : split(between(line, "(", ")")))
            zone.types.push_back(word == "SINGLE" ? 1 : word == "DOUBLE" ? 2 : 3);
    } else if (line == "# element node lists") {
        values = nullptr;
    } else if (line.starts_with("# ")) {
        std::size_t arrays = text.labels.back().size(), v = 0;
        while (v < zone.shares.size() && (zone.shares[v] > 0 || arrays-- > 0)) ++v;
        values = v < zone.values.size() ? &zone.values[v] : &surplus;
        text.labels.back().push_back(line.substr(2));
    } else {
        std::istringstream row(line);
        for (std::string field; row >> field;) {
            const double value = std::strtod(field.c_str(), nullptr);
            if (values)
                values->push_back(value);
            else
                zone.elementNodes.push_back(static_cast<std::int32_t>(value));
        }
    }
}

} // namespace

Text parse(const std::string& contents) {
    Text text;
    DataSet& set = text.set;
    std::istringstream in(contents);
    std::vector<double>* values = nullptr;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("ZONE ")) {
            text.zoneLines.push_back(line);
            text.labels.emplace_back();
            // Each part of the line must end with a comma, also the last one.
            set.zones.push_back(zoneOf(line + ",", set.variables.size()));
        } else if (!set.zones.empty()) {
            readZoneLine(text, line, values);
        } else if (line.starts_with("TITLE")) {
            set.title = between(line, "\"", "\"");
        } else if (line.starts_with("VARIABLES = ")) {
            std::erase(line, '"');
            set.variables = split(line.substr(12));
        } else if (line.starts_with("DATASETAUXDATA")) {
            set.aux[between(line, " ", "=")] = between(line, "\"", "\"");
        } else if (line.starts_with("VARAUXDATA")) {
            set.units[std::stoi(line.substr(11))] = between(line, "\"", "\"");
        }
    }
    for (std::size_t z = 0; z < set.zones.size() && text.fault.empty(); ++z)
        text.fault = faultOf(text, z);
    return text;
}

const std::vector<double>& valuesOf(const Text& text, std::size_t zone, const std::string& label) {
    const std::vector<std::string>& labels = text.labels.at(zone);
    auto array = std::ranges::find(labels, label) - labels.begin();
    const Zone& read = text.set.zones[zone];
    for (std::size_t v = 0; v < read.shares.size(); ++v)
        if (read.shares[v] == 0 && array-- == 0) return read.values[v];
    throw std::out_of_range("no array " + label);
}

std::string summaryOf(const Text& text, bool withValues) {
    std::vector<std::string> names = text.set.variables;
    if (withValues)
        for (const auto& [number, unit] : text.set.units)
            names.at(static_cast<std::size_t>(number - 1)) += " " + unit;
    std::string summary = text.fault + join(names) + "\n";
    for (std::size_t z = 0; z < text.set.zones.size(); ++z) {
        const Zone& zone = text.set.zones[z];
        std::vector<std::string> centred, shared, arrays = text.labels[z];
        std::size_t array = 0;
        for (std::size_t v = 0; v < zone.shares.size(); ++v) {
            const std::string number = std::to_string(v + 1);
            if (zone.centred[v]) centred.push_back(number);
            if (zone.shares[v] > 0) shared.push_back(number);
            if (zone.shares[v] > 0 || array == arrays.size()) continue;
            std::ostringstream value;
            if (withValues && !zone.values[v].empty()) value << ' ' << zone.values[v][0];
            arrays[array++] += value.str();
        }
        summary += "  [" + join(centred) + "] [" + join(shared) + "] " + join(arrays) + "\n";
    }
    return summary;
}

std::string contentsOf(const DataSet& set) {
    std::ostringstream out;
    out << set.title << '\n' << set.trailing << std::hexfloat;
    for (const std::string& name : set.variables) out << '\n' << name;
    for (const auto& [number, unit] : set.units) out << '\n' << number << unit;
    for (const auto& zone : set.zones) {
        const auto sourceOf = [&](std::int32_t share) -> const Zone& {
            return share > 0 ? set.zones[static_cast<std::size_t>(share - 1)] : zone;
        };
        out << "\nzone " << zone.time;
        for (std::size_t v = 0; v < set.variables.size(); ++v) {
            out << "\n" << set.variables[v];
            for (const double value : sourceOf(zone.shares[v]).values[v]) out << ' ' << value;
        }
        out << "\nnodes";
        for (const std::int32_t node : sourceOf(zone.connectivityShare).elementNodes)
            out << ' ' << node;
    }
    return out.str();
}

} // namespace data_set
