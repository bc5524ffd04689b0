#pragma once

#include "companion/data_set/data_set_file.hpp"
#include "tecio/tecio.h"
#include "tests/support/sample_files.hpp"

#include <gtest/gtest.h>

// Short forms of the calls of the writer library, for one data set "s" and its last zone.
namespace tecio_calls {

using Numbers = std::vector<std::int32_t>;
using Reals = std::vector<double>;

// By default a brick with two variables, the first of which is shared with zone 1.
struct ZoneShape {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2, 2}, shares{1, 0}, locations{1, 1};
    std::int32_t connectivity = 1, type = 5, passive = 0;
    std::int64_t faceConnections = 0;
};

inline void* set;
inline std::int32_t zone;
inline std::string title = "z"; // of each zone

// The functions with a result return the status.
inline int tryOpen(const char* variables, const char* setTitle = "t") {
    return tecFileWriterOpen("s", setTitle, variables, 1, 0, 0, nullptr, &set);
}
inline void open(const char* variables, const char* setTitle = "t") {
    EXPECT_EQ(tryOpen(variables, setTitle), 0);
}
inline int flush() {
    return tecFileWriterFlush(set, 0, nullptr);
}
inline int create(const ZoneShape& shape) {
    const Numbers passive(shape.types.size(), shape.passive);
    return tecZoneCreateFE(set, title.c_str(), shape.type, shape.nodes, shape.elements,
                           shape.types.data(), shape.shares.data(), shape.locations.data(),
                           passive.data(), shape.connectivity, shape.faceConnections, 0, &zone);
}
inline int at(double time, std::int32_t strand = 1) {
    return tecZoneSetUnsteadyOptions(set, zone, time, strand);
}
inline int reals(std::int32_t var, const Reals& values) {
    return tecZoneVarWriteDoubleValues(set, zone, var, 0, std::ssize(values), values.data());
}
inline int narrow(std::int32_t var, const std::vector<float>& values) {
    return tecZoneVarWriteFloatValues(set, zone, var, 0, std::ssize(values), values.data());
}
inline int nodes(const Numbers& list) {
    return tecZoneNodeMapWrite32(set, zone, 0, 1, std::ssize(list), list.data());
}
inline int aux(const std::string& name, const std::string& value) {
    return tecDataSetAddAuxData(set, name.c_str(), value.c_str());
}

// Begins a zone of nodes without elements, which shares nothing.
inline void beginNodes(double time, std::int64_t count, const Numbers& types) {
    const Numbers own(types.size(), 0), nodal(types.size(), 1);
    EXPECT_EQ(create({count, 0, types, own, nodal, 0}) + at(time) + nodes({}), 0);
}

// Writes a zone with one variable, whose values are the time of the zone.
inline void addZone(double time) {
    ASSERT_EQ(create({2, 0, {2}, {0}, {1}, 0}) + at(time) + nodes({}) + reals(1, {time, time}), 0);
}

// Expect zones with the times 1 to `lastTime` and their values. `finish` finishes the data set
// first.
inline void expectTimes(int lastTime) {
    const data_set_file::DataSet found = data_set_file::read("s.szplt");
    EXPECT_EQ(found.trailing, 0);
    ASSERT_EQ(found.zones.size(), static_cast<std::size_t>(lastTime));
    for (int z = 0; z < lastTime; ++z)
        ASSERT_EQ(found.zones[static_cast<std::size_t>(z)].values[0], Reals(2, z + 1));
}
inline void finish(int lastTime) {
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    EXPECT_FALSE(set || std::filesystem::exists("s.szplt.szhdr"));
    expectTimes(lastTime);
}

} // namespace tecio_calls
