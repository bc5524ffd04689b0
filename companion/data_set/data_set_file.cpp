#include "companion/data_set/data_set_file.hpp"

#include "companion/data_set/cursor.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace data_set_file {

namespace {

constexpr std::array<std::int64_t, 6> cornersOfType{0, 2, 3, 4, 4, 8};
constexpr std::array<std::int64_t, 4> bytesOfType{0, 4, 8, 4};

template<class T>
std::vector<T> readArray(const File& file, std::int64_t position, std::int64_t count) {
    std::vector<T> values(static_cast<std::size_t>(count));
    readAt(file, position, values.data(), count * static_cast<std::int64_t>(sizeof(T)));
    return values;
}

template<class T>
std::vector<double> readWidened(const File& file, std::int64_t position, std::int64_t count) {
    const std::vector<T> values = readArray<T>(file, position, count);
    return {values.begin(), values.end()};
}

std::vector<double> readReals(const File& file, std::int32_t type, std::int64_t position,
                              std::int64_t count) {
    if (type == 1) return readWidened<float>(file, position, count);
    if (type == 2) return readArray<double>(file, position, count);
    return readWidened<std::int32_t>(file, position, count);
}

} // namespace

std::vector<std::string> uniqueNames(const std::vector<std::string>& names) {
    std::set<std::string> taken;
    std::map<std::string, int> lastNumber; // of each name
    std::vector<std::string> unique;
    for (const std::string& name : names) {
        int& number = lastNumber.try_emplace(name, 1).first->second;
        std::string text = name;
        while (!taken.insert(text).second) text = name + " (" + std::to_string(++number) + ")";
        unique.push_back(std::move(text));
    }
    return unique;
}

std::int64_t cornersOf(const Zone& zone) {
    return cornersOfType[static_cast<std::size_t>(zone.type)];
}

std::int64_t valueCount(const Zone& zone, std::size_t variable) {
    return zone.centred[variable] ? zone.elements : zone.nodes;
}

std::int64_t valueBytes(const Zone& zone, std::size_t variable) {
    return bytesOfType[static_cast<std::size_t>(zone.types[variable])];
}

std::vector<double> readValues(const File& file, const Zone& zone, std::size_t variable) {
    return readReals(file, zone.types[variable], zone.valuesAt[variable],
                     valueCount(zone, variable));
}

double readValue(const File& file, const Zone& zone, std::size_t variable, std::int64_t index) {
    const std::int64_t position = zone.valuesAt[variable] + index * valueBytes(zone, variable);
    return readReals(file, zone.types[variable], position, 1)[0];
}

std::vector<std::int32_t> readElementNodes(const File& file, const Zone& zone) {
    std::vector<std::int32_t> nodes =
        readArray<std::int32_t>(file, zone.elementNodesAt, zone.elements * cornersOf(zone));
    // Any number may be in a damaged file; the greatest has no successor.
    for (std::int32_t& node : nodes)
        node = static_cast<std::int32_t>(static_cast<std::uint32_t>(node) + 1U);
    return nodes;
}

void checkElementNodes(const File& file, const Zone& zone) {
    constexpr std::int64_t blockNodes = 262144;
    const std::int64_t count = zone.elements * cornersOf(zone);
    for (std::int64_t first = 0; first < count; first += blockNodes) {
        const std::vector<std::int32_t> nodes = readArray<std::int32_t>(
            file, zone.elementNodesAt + 4 * first, std::min(blockNodes, count - first));
        const auto outside = std::ranges::find_if(
            nodes, [&](std::int32_t node) { return node < 0 || node >= zone.nodes; });
        if (outside == nodes.end()) continue;
        const std::int64_t at = first + (outside - nodes.begin());
        fail(file, zone.elementNodesAt + 4 * at,
             "element " + std::to_string(at / cornersOf(zone) + 1) +
                 " has a node that is not in its zone");
    }
}

std::vector<double> readCheckedValues(const File& file, const Zone& zone, std::size_t variable) {
    std::vector<double> values = readValues(file, zone, variable);
    double least = 0, greatest = 0;
    bool anyNumber = false;
    for (const double value : values) {
        if (std::isnan(value)) continue;
        least = anyNumber ? std::min(least, value) : value;
        greatest = anyNumber ? std::max(greatest, value) : value;
        anyNumber = true;
    }
    const auto before = std::count(zone.shares.begin(),
                                   zone.shares.begin() + static_cast<std::ptrdiff_t>(variable), 0);
    const auto range = static_cast<std::size_t>(2 * before);
    if (least != zone.ranges[range] || greatest != zone.ranges[range + 1])
        fail(file, zone.valuesAt[variable], "the values are outside the range of their zone");
    return values;
}

DataSet read(const std::string& path) {
    File file(path);
    DataSet set = scan(file);
    for (Zone& zone : set.zones) {
        zone.values.resize(set.variables.size());
        for (std::size_t v = 0; v < set.variables.size(); ++v)
            if (zone.shares[v] == 0) zone.values[v] = readCheckedValues(file, zone, v);
        if (zone.connectivityShare == 0) zone.elementNodes = readElementNodes(file, zone);
    }
    return set;
}

} // namespace data_set_file
