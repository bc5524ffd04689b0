#include "tests/support/data_set.hpp"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace data_set {

using data_set_file::DataSet;
using data_set_file::Zone;

std::string join(const std::vector<std::string>& parts) {
    std::string list;
    for (const std::string& part : parts) list += (list.empty() ? "" : ",") + part;
    return list;
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
