#include "tests/companion/made_set.hpp"

#include "tecio/tecio.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace made_set {

namespace {

constexpr std::int32_t brick = 5;

struct Layout {
    std::vector<std::int32_t> types, shares, locations, passive;
};

Layout layoutOf(const Shape& shape, bool first) {
    Layout layout;
    for (std::size_t v = 0; v < shape.variables.size() + 3; ++v) {
        const std::string name = v < 3 ? "" : shape.variables[v - 3];
        const bool cells = !name.empty() && std::string_view("xyz").find(name.back()) < 3;
        layout.types.push_back(v > 2 && v % 3 == 0 ? 1 : 2);
        layout.shares.push_back(v < 3 && !first);
        layout.locations.push_back(!cells);
        layout.passive.push_back(0);
    }
    return layout;
}

std::vector<std::int32_t> nodesOf(const Shape& shape) {
    std::vector<std::int32_t> nodes;
    for (std::int32_t e = 0; e < shape.elements; ++e)
        for (const std::int32_t corner : {0, 4, 5, 1, 2, 6, 7, 3})
            nodes.push_back(shape.firstNode + 4 * e + corner);
    return nodes;
}

int putValues(void* set, std::int32_t zone, std::size_t v, bool narrow,
              const std::vector<double>& values) {
    const auto number = static_cast<std::int32_t>(v + 1);
    const auto count = static_cast<std::int64_t>(values.size());
    if (!narrow) return tecZoneVarWriteDoubleValues(set, zone, number, 0, count, values.data());
    const std::vector<float> floats(values.begin(), values.end());
    return tecZoneVarWriteFloatValues(set, zone, number, 0, count, floats.data());
}

int putZone(void* set, const Shape& shape, double time, bool first) {
    const Layout layout = layoutOf(shape, first);
    const std::int64_t nodes = 4 * (shape.elements + 1);
    std::int32_t zone = 0;
    int status = tecZoneCreateFE(set, shape.title.c_str(), brick, nodes, shape.elements,
                                 layout.types.data(), layout.shares.data(), layout.locations.data(),
                                 layout.passive.data(), first ? 0 : 1, 0, 0, &zone);
    if (shape.strand > 0) status += tecZoneSetUnsteadyOptions(set, zone, time, shape.strand);
    for (std::size_t v = first ? 0 : 3; v < layout.types.size(); ++v) {
        std::vector<double> values;
        for (std::int64_t i = 0; i < (layout.locations[v] == 1 ? nodes : shape.elements); ++i) {
            const std::int64_t xyz[] = {i / 4, i / 2 % 2, i % 2};
            values.push_back(v < 3 ? static_cast<double>(xyz[v]) : valueAt(v - 3, time, i));
        }
        status += putValues(set, zone, v, layout.types[v] == 1, values);
    }
    const std::vector<std::int32_t> list = nodesOf(shape);
    if (first) status += tecZoneNodeMapWrite32(set, zone, 0, 1, std::ssize(list), list.data());
    return status;
}

} // namespace

double valueAt(std::size_t variable, double time, std::int64_t index) {
    return 1000.0 * static_cast<double>(variable) + time + static_cast<double>(index) / 8;
}

void put(const std::string& path, const Shape& shape) {
    std::string names = "X,Y,Z";
    for (const std::string& name : shape.variables) names += "," + name;
    void* set = nullptr;
    int status = tecFileWriterOpen(path.c_str(), "made", names.c_str(), 1, 0, 0, nullptr, &set);
    for (std::size_t t = 0; t < shape.times.size(); ++t)
        status += putZone(set, shape, shape.times[t], t == 0 || !shape.sharedMesh);
    EXPECT_EQ(status + tecFileWriterClose(&set), 0);
}

} // namespace made_set
