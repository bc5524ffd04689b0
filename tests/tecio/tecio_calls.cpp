#include "tests/tecio/tecio_calls.hpp"

#include "companion/data_set/data_set_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace tecio_calls {

using data_set_file::DataSet;

void* set;
std::int32_t zone;
std::string title = "z";

int tryOpen(const char* variables, const char* setTitle) {
    return tecFileWriterOpen("s", setTitle, variables, 1, 0, 0, nullptr, &set);
}
void open(const char* variables, const char* setTitle) {
    EXPECT_EQ(tryOpen(variables, setTitle), 0);
}
int flush() {
    return tecFileWriterFlush(set, 0, nullptr);
}
int create(const ZoneShape& shape) {
    const Numbers passive(shape.types.size(), shape.passive);
    return tecZoneCreateFE(set, title.c_str(), shape.type, shape.nodes, shape.elements,
                           shape.types.data(), shape.shares.data(), shape.locations.data(),
                           passive.data(), shape.connectivity, shape.faceConnections, 0, &zone);
}
int at(double time, std::int32_t strand) {
    return tecZoneSetUnsteadyOptions(set, zone, time, strand);
}
int reals(std::int32_t var, const Reals& values) {
    return tecZoneVarWriteDoubleValues(set, zone, var, 0, static_cast<std::int64_t>(values.size()),
                                       values.data());
}
int narrow(std::int32_t var, const std::vector<float>& values) {
    return tecZoneVarWriteFloatValues(set, zone, var, 0, static_cast<std::int64_t>(values.size()),
                                      values.data());
}
int nodes(const Numbers& list) {
    return tecZoneNodeMapWrite32(set, zone, 0, 1, static_cast<std::int64_t>(list.size()),
                                 list.data());
}

int aux(const std::string& name, const std::string& value) {
    return tecDataSetAddAuxData(set, name.c_str(), value.c_str());
}

void beginNodes(double time, std::int64_t count, const Numbers& types) {
    const Numbers own(types.size(), 0), nodal(types.size(), 1);
    EXPECT_EQ(create({count, 0, types, own, nodal, 0}) + at(time) + nodes({}), 0);
}

int putZone(double time) {
    return create({2, 0, {2}, {0}, {1}, 0}) + at(time) + nodes({}) + reals(1, {time, time});
}
void addZone(double time) {
    ASSERT_EQ(putZone(time), 0);
}

void expectTimes(int lastTime) {
    const DataSet found = data_set_file::read("s.szplt");
    EXPECT_EQ(found.trailing, 0);
    ASSERT_EQ(found.zones.size(), static_cast<std::size_t>(lastTime));
    for (int z = 0; z < lastTime; ++z)
        ASSERT_EQ(found.zones[static_cast<std::size_t>(z)].values[0], Reals(2, z + 1));
}

void finish(int lastTime) {
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    EXPECT_FALSE(set || std::filesystem::exists("s.szplt.szhdr"));
    expectTimes(lastTime);
}

} // namespace tecio_calls
