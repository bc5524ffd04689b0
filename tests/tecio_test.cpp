#include "tecio/tecio.h"
#include "tests/sample_files.hpp"
#include "tools/data_set_file.hpp"
#include "tvncommon/system_calls.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>

// The writer library by itself: its bytes, what it refuses, and large sets.
namespace {

using sample_files::Bytes;
using sample_files::Folder;
using Numbers = std::vector<std::int32_t>;

constexpr int refused = 1;

template<class... T>
Bytes bytes(T... values) {
    Bytes all;
    ((all += Bytes(reinterpret_cast<const char*>(&values), sizeof values)), ...);
    return all;
}

Bytes text(const std::string& characters) {
    Bytes all;
    for (const char c : characters) all += bytes(std::int32_t{c});
    return all + bytes(0);
}

void* open(const std::string& variables, const std::string& title = "t") {
    void* handle = nullptr;
    EXPECT_EQ(tecFileWriterOpen("s", title.c_str(), variables.c_str(), 1, 0, 0, nullptr, &handle),
              0);
    return handle;
}

// A zone of bricks whose variables are nodal doubles.
struct ZoneWish {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2}, shares{0}, locations{1};
    std::int32_t connectivity = 0, type = 5;
    std::int32_t passive = 0;
};

int create(void* handle, const ZoneWish& wish, std::int32_t& zone) {
    const Numbers passive(wish.types.size(), wish.passive);
    return tecZoneCreateFE(handle, "z", wish.type, wish.nodes, wish.elements, wish.types.data(),
                           wish.shares.data(), wish.locations.data(), passive.data(),
                           wish.connectivity, 0, 0, &zone);
}

// Adds a zone at a time that holds nothing but one nodal variable, whose values are the time.
void addZone(void* handle, double time) {
    const ZoneWish wish{.nodes = 2, .elements = 0};
    std::int32_t zone = 0;
    ASSERT_EQ(create(handle, wish, zone), 0);
    ASSERT_EQ(tecZoneSetUnsteadyOptions(handle, zone, time, 1), 0);
    const double values[] = {time, time};
    ASSERT_EQ(tecZoneNodeMapWrite32(handle, zone, 0, 1, 0, nullptr), 0);
    ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, 2, values), 0);
}

std::vector<double> timesOf(const data_set_file::DataSet& set) {
    std::vector<double> times;
    for (const data_set_file::Zone& zone : set.zones) {
        times.push_back(zone.time);
        for (const double value : zone.values[0]) EXPECT_EQ(value, zone.time);
    }
    return times;
}

std::vector<double> upTo(int last) {
    std::vector<double> times;
    for (int time = 1; time <= last; ++time) times.push_back(time);
    return times;
}

// One quadrilateral, five variables, two zones, of which the second has but one array.
TEST(Tecio, EveryByteOfASmallSet) {
    const Folder folder;
    void* handle = open("X,Y,Z,Zone,H");
    EXPECT_EQ(tecDataSetAddAuxData(handle, "k", "v"), 0);
    EXPECT_EQ(tecDataSetAddAuxData(handle, "blank", "  "), 0);
    EXPECT_EQ(tecVarAddAuxData(handle, 5, "Units", "(m)"), 0);
    ZoneWish wish{4, 1, {2, 2, 2, 3, 1}, {0, 0, 0, 0, 0}, {1, 1, 1, 0, 1}, 0, 3};
    std::int32_t zone = 0;
    EXPECT_EQ(create(handle, wish, zone), 0);
    EXPECT_EQ(tecZoneSetUnsteadyOptions(handle, zone, 0, 1), 0);
    const double x[] = {0, 1, 1, 0}, y[] = {0, 0, 1, 1}, z[] = {5, 5, 5, 5};
    const std::int32_t seven = 7, nodes[] = {1, 2, 3, 4};
    const float h[] = {1, 2, 3, 4}, later[] = {1.5, 2.5, 3.5, 4.5};
    EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 1, 0, 4, x), 0);
    EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 3, 0, 4, z), 0); // in any order
    EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 2, 0, 1, y), 0); // in any pieces
    EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 2, 0, 3, y + 1), 0);
    EXPECT_EQ(tecZoneNodeMapWrite32(handle, 1, 0, 1, 3, nodes), 0);
    EXPECT_EQ(tecZoneNodeMapWrite32(handle, 1, 0, 1, 1, nodes + 3), 0);
    EXPECT_EQ(tecZoneVarWriteInt32Values(handle, 1, 4, 0, 1, &seven), 0);
    EXPECT_EQ(tecZoneVarWriteFloatValues(handle, 1, 5, 0, 4, h), 0);
    wish.shares = {1, 1, 1, 1, 0};
    wish.connectivity = 1;
    EXPECT_EQ(create(handle, wish, zone), 0);
    EXPECT_EQ(tecZoneSetUnsteadyOptions(handle, zone, 10, 1), 0);
    EXPECT_EQ(tecZoneVarWriteFloatValues(handle, 2, 5, 0, 4, later), 0);
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    EXPECT_EQ(handle, nullptr);

    const auto zoneHeader = [](double time) {
        return bytes(299.0F) + text("z") + bytes(-1, 1) + bytes(time) + bytes(-1, 3, 1) +
               bytes(0, 0, 0, 1, 0) + bytes(0, 0, 4, 1, 0, 0, 0, 0);
    };
    const Bytes head = Bytes("#!TDV112") + bytes(1, 0) + text("t") + bytes(5) + text("X") +
                       text("Y") + text("Z") + text("Zone") + text("H") + bytes(799.0F) +
                       text("k") + bytes(0) + text("v") + bytes(899.0F, 4) + text("Units") +
                       bytes(0) + text("(m)") + zoneHeader(0) + zoneHeader(10);
    const Bytes data = bytes(357.0F, 299.0F, 2, 2, 2, 3, 1, 0, 0, -1) +
                       bytes(0.0, 1.0, 0.0, 1.0, 5.0, 5.0, 7.0, 7.0, 1.0, 4.0) +
                       bytes(0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 5.0, 5.0, 5.0, 5.0, 7) +
                       bytes(1.0F, 2.0F, 3.0F, 4.0F, 0, 1, 2, 3) +
                       bytes(299.0F, 2, 2, 2, 3, 1, 0, 1, 0, 0, 0, 0, -1, 0) + bytes(1.5, 4.5) +
                       bytes(1.5F, 2.5F, 3.5F, 4.5F);
    const Bytes found = sample_files::get("s.szplt");
    const Bytes room = bytes(799.0F) + text("_") + bytes(0, std::int32_t{' '}, std::int32_t{' '});
    EXPECT_EQ(found.substr(0, head.size() + room.size()), head + room);
    EXPECT_EQ(found.substr(found.size() - data.size() - 8), bytes(std::int32_t{' '}, 0) + data);
    EXPECT_EQ(data_set_file::read("s.szplt").trailing, 0);
    EXPECT_FALSE(std::filesystem::exists("s.szplt.szhdr"));
}

TEST(Tecio, RangesLeaveOutNaN) {
    const double inf = HUGE_VAL, nan = NAN;
    std::vector<double> many(1000, nan);
    many[77] = -3;
    many[999] = 4;
    const std::vector<std::vector<double>> arrays{many,   {nan},       {inf, nan},
                                                  {-inf}, {nan, -0.5}, {-1, inf}};
    for (const std::vector<double>& values : arrays) {
        const Folder folder;
        void* handle = open("V,W");
        const auto n = static_cast<std::int64_t>(values.size());
        const std::vector<float> narrow(values.begin(), values.end());
        std::int32_t zone = 0;
        ASSERT_EQ(create(handle, {n, 0, {2, 1}, {0, 0}, {1, 1}}, zone), 0);
        EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 1, 0, n, values.data()), 0);
        EXPECT_EQ(tecZoneVarWriteFloatValues(handle, 1, 2, 0, n, narrow.data()), 0);
        EXPECT_EQ(tecZoneNodeMapWrite32(handle, 1, 0, 1, 0, nullptr), 0);
        EXPECT_EQ(tecFileWriterClose(&handle), 0);
        EXPECT_EQ(data_set_file::read("s.szplt").zones[0].values.size(), 2); // compares the ranges
    }
}

// Each call fails, whatever follows fails too, and the set stays as it was flushed last.
TEST(Tecio, RefusesWhatDoesNotFit) {
    const double values[9] = {};
    const float narrow[9] = {};
    const std::int32_t whole[9] = {};
    std::int32_t zone = 0;
    void* handle = nullptr;
    const auto zoneWith = [&](auto change) {
        return [&, change] {
            ZoneWish wish{
                .types = {2, 2}, .shares = {1, 0}, .locations = {1, 1}, .connectivity = 1};
            change(wish);
            return create(handle, wish, zone);
        };
    };
    const auto inZone = [&](std::function<int()> call) {
        return [&, call] {
            EXPECT_EQ(zoneWith([](ZoneWish&) {})(), 0);
            return call();
        };
    };
    const std::function<int()> calls[] = {
        zoneWith([](ZoneWish& w) { w.type = 6; }),
        zoneWith([](ZoneWish& w) { w.nodes = 9; }), // of the shared variable
        zoneWith([](ZoneWish& w) { w.nodes = 2147483648; }),
        zoneWith([](ZoneWish& w) { w.elements = -1; }),
        zoneWith([](ZoneWish& w) { w.types[0] = 1; }),
        zoneWith([](ZoneWish& w) { w.types[1] = 4; }),
        zoneWith([](ZoneWish& w) { w.locations[0] = 0; }),
        zoneWith([](ZoneWish& w) { w.locations[1] = 2; }),
        zoneWith([](ZoneWish& w) { w.shares[0] = 2; }),
        zoneWith([](ZoneWish& w) { w.shares[0] = -1; }),
        zoneWith([](ZoneWish& w) { w.connectivity = 2; }),
        zoneWith([](ZoneWish& w) { w.passive = 1; }),
        [&] { return tecVarAddAuxData(handle, 1, "n", "v"); },                   // a zone is there
        [&] { return tecZoneVarWriteDoubleValues(handle, 1, 1, 0, 8, values); }, // no zone is open
        [&] { return tecZoneSetUnsteadyOptions(handle, 1, 5, 1); },
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 1, 2, 0, 8, values); }),
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 1, 0, 8, values); }), // shared
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 3, 0, 8, values); }),
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 0, 0, 8, values); }),
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 2, 1, 8, values); }),
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 2, 0, 9, values); }),
        inZone([&] { return tecZoneVarWriteDoubleValues(handle, 2, 2, 0, -1, values); }),
        inZone([&] { return tecZoneVarWriteFloatValues(handle, 2, 2, 0, 8, narrow); }),
        inZone([&] { return tecZoneVarWriteInt32Values(handle, 2, 2, 0, 8, whole); }),
        inZone([&] { return tecZoneNodeMapWrite32(handle, 2, 0, 1, 8, whole); }), // shared
        inZone([&] { return tecZoneSetUnsteadyOptions(handle, 2, NAN, 1); }),
        inZone([&] { return tecFileWriterFlush(handle, 0, nullptr); }), // not complete
        inZone(zoneWith([](ZoneWish&) {})),
        inZone([&] {
            EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 2, 2, 0, 3, values), 0);
            return tecZoneSetUnsteadyOptions(handle, 2, 5, 1); // behind values
        }),
        inZone([&] {
            EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 2, 2, 0, 8, values), 0);
            return tecZoneVarWriteDoubleValues(handle, 2, 2, 0, 8, values); // again
        }),
    };
    for (std::size_t i = 0; i < std::size(calls); ++i) {
        SCOPED_TRACE(i);
        const Folder folder;
        handle = open("V,W");
        ASSERT_EQ(create(handle, {.types = {2, 2}, .shares = {0, 0}, .locations = {1, 1}}, zone),
                  0);
        EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 1, 0, 8, values), 0);
        EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 2, 0, 8, values), 0);
        EXPECT_EQ(tecZoneNodeMapWrite32(handle, 1, 0, 1, 8, whole), 0);
        EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
        EXPECT_EQ(calls[i](), refused);
        EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), refused);
        EXPECT_EQ(tecFileWriterClose(&handle), refused);
        EXPECT_EQ(tecFileWriterClose(&handle), refused);
        EXPECT_TRUE(std::filesystem::exists("s.szplt.szhdr"));
        EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), 1);
    }
}

// A variable that a shared zone has from another comes from that one.
TEST(Tecio, SharesEndAtTheZoneWithTheValues) {
    const Folder folder;
    void* handle = open("V");
    addZone(handle, 1);
    std::int32_t zone = 0;
    for (const std::int32_t from : {1, 2, 3}) {
        ASSERT_EQ(create(handle, {2, 0, {2}, {from}, {1}, from}, zone), 0);
        ASSERT_EQ(tecZoneSetUnsteadyOptions(handle, zone, from + 1, 1), 0);
    }
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    const data_set_file::DataSet set = data_set_file::read("s.szplt");
    ASSERT_EQ(set.zones.size(), 4);
    for (std::size_t z = 1; z < 4; ++z) {
        EXPECT_EQ(set.zones[z].shares, Numbers{1});
        EXPECT_EQ(set.zones[z].connectivityShare, 1);
    }
}

// What a zone that was never completed left in the file goes.
TEST(Tecio, NothingIsLeftOfAZoneCutShort) {
    const Folder folder;
    addZone(open("V"), 1);
    void* handle = open("V");
    std::int32_t zone = 0;
    const std::vector<double> values(1000);
    ASSERT_EQ(create(handle, {.nodes = 2000, .elements = 0}, zone), 0);
    ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, 1000, values.data()), 0);
    handle = open(""); // whatever variables it has
    EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
    EXPECT_EQ(data_set_file::read("s.szplt").trailing, 0);
    addZone(handle, 2);
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    EXPECT_EQ(timesOf(data_set_file::read("s.szplt")), upTo(2));
}

// Far more zones than the header has room for at first, by one writer and by several that go on
// from each other; a reader sees those of the last flush, a writer all.
TEST(Tecio, TheRoomForZonesGrows) {
    constexpr int zones = 3000;
    for (const bool reopening : {false, true}) {
        const Folder folder;
        void* handle = open("V");
        EXPECT_EQ(tecDataSetAddAuxData(handle, "k", "v"), 0);
        for (int time = 1; time <= zones; ++time) {
            ASSERT_NO_FATAL_FAILURE(addZone(handle, time));
            if (time % 2000 == 100) {
                EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
                EXPECT_EQ(timesOf(data_set_file::read("s.szplt")), upTo(time));
            }
            if (!reopening || time % 1400 != 0) continue;
            handle = open("V", "another title");
            const std::string value(static_cast<std::size_t>(time / 1400), 'w');
            EXPECT_EQ(tecDataSetAddAuxData(handle, "k", value.c_str()), 0);
        }
        EXPECT_EQ(tecFileWriterClose(&handle), 0);
        const data_set_file::DataSet set = data_set_file::read("s.szplt");
        EXPECT_EQ(timesOf(set), upTo(zones));
        EXPECT_EQ(set.title, "t");
        EXPECT_EQ(set.aux.at("k"), reopening ? "ww" : "v");
        EXPECT_EQ(set.trailing, 0);
        EXPECT_FALSE(std::filesystem::exists("s.szplt.new"));
    }
}

// Large writes leave a hole in the file.
std::ptrdiff_t writeSparse(int descriptor, const void* from, std::size_t size,
                           std::int64_t position) {
    const system_calls::Table real = system_calls::systemTable();
    if (size < 1000000) return real.writeAt(descriptor, from, size, position);
    system_calls::FileFacts facts;
    real.facts(descriptor, facts);
    const std::int64_t end = position + static_cast<std::int64_t>(size);
    return real.truncate(descriptor, std::max(end, facts.size)) == 0
               ? static_cast<std::ptrdiff_t>(size)
               : -1;
}

// As many values as there can be, in zones of 26 GB.
TEST(Tecio, CountsAndSizesBeyond32Bits) {
    if (!std::getenv("MESHRAKE_LONG_TESTS")) GTEST_SKIP() << "MESHRAKE_LONG_TESTS is not set";
    const Folder folder;
    system_calls::table.writeAt = writeSparse;
    system_calls::table.reserve = [](int, std::int64_t, std::int64_t) { return 0; };
    constexpr std::int64_t most = 2147483647, piece = 16777216;
    const std::vector<double> zeros(piece);
    void* handle = open("V,W");
    std::int32_t zone = 0;
    for (const double time : {1.0, 2.0}) {
        ASSERT_EQ(create(handle, {most, 0, {2, 1}, {0, 0}, {1, 1}}, zone), 0);
        ASSERT_EQ(tecZoneSetUnsteadyOptions(handle, zone, time, 1), 0);
        ASSERT_EQ(tecZoneNodeMapWrite32(handle, zone, 0, 1, 0, nullptr), 0);
        for (std::int64_t done = 0; done < most; done += piece) {
            const std::int64_t n = std::min(piece, most - done);
            const auto* narrow = reinterpret_cast<const float*>(zeros.data());
            ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, n, zeros.data()), 0);
            ASSERT_EQ(tecZoneVarWriteFloatValues(handle, zone, 2, 0, n, narrow), 0);
        }
    }
    ASSERT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
    handle = open("V,W");
    const float values[] = {3, 4};
    ASSERT_EQ(create(handle, {2, 0, {1, 1}, {0, 0}, {1, 1}}, zone), 0);
    ASSERT_EQ(tecZoneNodeMapWrite32(handle, zone, 0, 1, 0, nullptr), 0);
    for (const std::int32_t v : {1, 2})
        ASSERT_EQ(tecZoneVarWriteFloatValues(handle, zone, v, 0, 2, values), 0);
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    system_calls::table = system_calls::systemTable();
    const std::int64_t zoneBytes = 4 * (1 + 2 + 3) + 2 * 16 + most * 12;
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size("s.szplt"));
    const Bytes end = bytes(299.0F, 1, 1, 0, 0, -1, 3.0, 4.0, 3.0, 4.0, 3.0F, 4.0F, 3.0F, 4.0F);
    Bytes found(end.size(), 0);
    const auto file = std::fopen("s.szplt", "rb");
    ASSERT_NE(file, nullptr);
    std::fseek(file, -static_cast<long>(end.size()), SEEK_END);
    EXPECT_EQ(std::fread(found.data(), 1, found.size(), file), found.size());
    std::fclose(file);
    EXPECT_EQ(found, end);
    const std::int64_t header = size - 2 * zoneBytes - static_cast<std::int64_t>(end.size());
    EXPECT_TRUE(header > 65536 && header < 600000) << header;
}

} // namespace
