#include "tests/support/data_set.hpp"

#include <algorithm>
#include <set>
#include <sstream>

namespace data_set {

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

namespace {

const std::string connectivityLabel = "element node lists";

std::size_t nodesPerElement(const std::string& zoneType) {
    if (zoneType == "FELINESEG") return 2;
    return zoneType == "FEBRICK" ? 8 : 4;
}

void addValues(Zone& zone, const std::string& label, const std::string& row) {
    std::istringstream in(row);
    for (std::string value; in >> value;) {
        zone.values[label].push_back(value);
        if (label != connectivityLabel) ++zone.counts.back();
    }
}

std::string faultOf(const DataSet& set, Zone& zone) {
    const std::vector<std::string> names = split(set.variables), labels = split(zone.written);
    const std::vector<std::string> centred = split(zone.centred), shared = split(zone.shared);
    const std::size_t nodes = std::stoul(between(zone.line, "NODES=", ","));
    const std::size_t elements = std::stoul(between(zone.line, "ELEMENTS=", ","));
    const auto holds = [](const std::vector<std::string>& list, std::size_t number) {
        return std::find(list.begin(), list.end(), std::to_string(number)) != list.end();
    };
    if (std::set(names.begin(), names.end()).size() != names.size()) return "a name stands twice";
    std::size_t array = 0;
    for (std::size_t v = 1; v <= names.size(); ++v) {
        if (holds(shared, v)) continue;
        if (array == labels.size()) return "no array of " + names[v - 1];
        if (zone.counts[array] != (holds(centred, v) ? elements : nodes))
            return "the count of " + names[v - 1];
        ++array;
    }
    if (array != labels.size()) return "an array of no variable: " + labels[array];

    const bool ownElements = zone.line.find("CONNECTIVITYSHAREZONE=1") == std::string::npos;
    const std::vector<std::string>& list = zone.values[connectivityLabel];
    const std::size_t perElement = nodesPerElement(between(zone.line, "ZONETYPE=", ","));
    if (list.size() != (ownElements ? elements * perElement : 0))
        return "the count of element nodes";
    for (const std::string& node : list)
        if (std::stol(node) < 1 || std::stoul(node) > nodes) return "an element with node " + node;
    return "";
}

} // namespace

DataSet parse(const std::string& text) {
    DataSet set;
    std::istringstream in(text);
    std::string label;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("VARIABLES = ")) {
            set.variables = line.substr(12);
            std::erase(set.variables, '"');
        } else if (line.starts_with("ZONE ")) {
            // A part stands between ", " and the next; the type has nothing behind it at times.
            set.zones.push_back({line + ",",
                                 between(line, "VARLOCATION=([", "]"),
                                 between(line, "VARSHARELIST=([", "]"),
                                 "",
                                 {},
                                 {}});
        } else if (line.starts_with("DT=(")) {
            if (split(line).size() != split(set.variables).size())
                set.fault = "the number of types";
        } else if (line.starts_with("# ") && !set.zones.empty()) {
            label = line.substr(2);
            std::string& written = set.zones.back().written;
            if (label == connectivityLabel) continue;
            written += (written.empty() ? "" : ",") + label;
            set.zones.back().counts.push_back(0);
        } else if (!set.zones.empty()) {
            addValues(set.zones.back(), label, line);
        }
    }
    for (Zone& zone : set.zones)
        if (set.fault.empty()) set.fault = faultOf(set, zone);
    return set;
}

std::string summaryOf(const std::string& text) {
    const DataSet set = parse(text);
    std::string summary = set.fault + set.variables + "\n";
    for (const Zone& zone : set.zones)
        summary += "  [" + zone.centred + "] [" + zone.shared + "] " + zone.written + "\n";
    return summary;
}

std::string contentsOf(const data_set_file::DataSet& set) {
    std::ostringstream out;
    out << set.title << '\n' << set.trailing << std::hexfloat;
    for (const std::string& name : set.variables) out << '\n' << name;
    for (const auto& [number, unit] : set.units) out << '\n' << number << unit;
    for (const auto& zone : set.zones) {
        const auto sourceOf = [&](std::int32_t share) -> const data_set_file::Zone& {
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
