#include "tecio/tecio.h"
#include "tests/sample_files.hpp"
#include "tools/data_set_file.hpp"
#include "tvncommon/system_calls.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

// The writer library by itself: its bytes, what it refuses, and large sets.
namespace {

using data_set_file::DataSet;
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

void* open(const std::string& variables, const char* title = "t") {
    void* handle = nullptr;
    EXPECT_EQ(tecFileWriterOpen("s", title, variables.c_str(), 1, 0, 0, nullptr, &handle), 0);
    return handle;
}

// By default a brick, of whose two variables the first is that of zone 1.
struct ZoneWish {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2, 2}, shares{1, 0}, locations{1, 1};
    std::int32_t connectivity = 1, type = 5, passive = 0;
};

int create(void* handle, const ZoneWish& wish, std::int32_t& zone) {
    const Numbers passive(wish.types.size(), wish.passive);
    return tecZoneCreateFE(handle, "z", wish.type, wish.nodes, wish.elements, wish.types.data(),
                           wish.shares.data(), wish.locations.data(), passive.data(),
                           wish.connectivity, 0, 0, &zone);
}

// A zone at a time, of nodes alone, with nodal variables of its own.
std::int32_t beginZone(void* handle, double time, std::int64_t nodes, const Numbers& types) {
    const Numbers own(types.size(), 0), nodal(types.size(), 1);
    std::int32_t zone = 0;
    EXPECT_EQ(create(handle, {nodes, 0, types, own, nodal, 0}, zone), 0);
    EXPECT_EQ(tecZoneSetUnsteadyOptions(handle, zone, time, 1), 0);
    EXPECT_EQ(tecZoneNodeMapWrite32(handle, zone, 0, 1, 0, nullptr), 0);
    return zone;
}

// One variable, whose values are the time.
void addZone(void* handle, double time) {
    const std::int32_t zone = beginZone(handle, time, 2, {2});
    const double values[] = {time, time};
    ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, 2, values), 0);
}

// That the set in the file is one zone for each time up to this one.
void expectTimes(int last) {
    const DataSet set = data_set_file::read("s.szplt");
    ASSERT_EQ(set.zones.size(), static_cast<std::size_t>(last));
    for (int z = 0; z < last; ++z)
        ASSERT_EQ(set.zones[static_cast<std::size_t>(z)].values[0], std::vector<double>(2, z + 1));
    EXPECT_EQ(set.trailing, 0);
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
    const auto room = [](std::size_t size) {
        return bytes(799.0F) + text("_") + bytes(0) + text(std::string(size / 4 - 5, ' '));
    };
    const Bytes found = sample_files::get("s.szplt");
    EXPECT_EQ(found.substr(0, 8192), head + room(4096 - head.size()) + room(4096));
    EXPECT_EQ(found.substr(found.size() - data.size() - 4096), room(4096) + data);
    EXPECT_EQ(data_set_file::read("s.szplt").trailing, 0);
    EXPECT_FALSE(std::filesystem::exists("s.szplt.szhdr"));
}

TEST(Tecio, RangesLeaveOutNaN) {
    const double inf = HUGE_VAL, nan = NAN;
    std::vector<double> many(1000, nan);
    many[77] = -3;
    many[999] = 4;
    for (const std::vector<double>& values : std::vector<std::vector<double>>{
             many, {nan}, {inf, nan}, {-inf}, {nan, -0.5}, {-1, inf}}) {
        const Folder folder;
        void* handle = open("V,W");
        const auto n = static_cast<std::int64_t>(values.size());
        const std::vector<float> narrow(values.begin(), values.end());
        beginZone(handle, 0, n, {2, 1});
        EXPECT_EQ(tecZoneVarWriteDoubleValues(handle, 1, 1, 0, n, values.data()), 0);
        EXPECT_EQ(tecZoneVarWriteFloatValues(handle, 1, 2, 0, n, narrow.data()), 0);
        EXPECT_EQ(tecFileWriterClose(&handle), 0);
        EXPECT_EQ(data_set_file::read("s.szplt").zones[0].values.size(), 2); // compares the ranges
    }
}

// Each call fails, whatever follows fails too, and the set stays as it was flushed last.
TEST(Tecio, RefusesWhatDoesNotFit) {
    const double reals[9] = {};
    const float narrow[9] = {};
    const std::int32_t whole[9] = {};
    std::int32_t zone = 0;
    void* handle = nullptr;
    const auto creating = [&](const ZoneWish& wish) -> std::function<int()> {
        return [&, wish] { return create(handle, wish, zone); };
    };
    const auto inZone = [&](const std::function<int()>& call) -> std::function<int()> {
        return [&, call] { return create(handle, {}, zone) == 0 ? call() : -1; };
    };
    const auto writing = [&](std::int32_t var, std::int64_t count, std::int32_t of = 2,
                             std::int32_t partition = 0) -> std::function<int()> {
        return [&, var, count, of, partition] {
            return tecZoneVarWriteDoubleValues(handle, of, var, partition, count, reals);
        };
    };
    const auto afterWriting = [&](std::int64_t count, const std::function<int()>& call) {
        return inZone([&, count, call] { return writing(2, count)() == 0 ? call() : -1; });
    };
    const std::function<int()> timing = [&] { return tecZoneSetUnsteadyOptions(handle, 2, 5, 1); };
    std::vector<std::function<int()>> calls{
        [&] { return tecVarAddAuxData(handle, 1, "n", "v"); }, // a zone is there
        writing(1, 8, 1),
        timing, // none is open
        inZone(writing(2, 8, 1)),
        inZone(writing(1, 8)),
        inZone(writing(3, 8)),
        inZone(writing(0, 8)),
        inZone(writing(2, 8, 2, 1)),
        inZone(writing(2, 9)),
        inZone(writing(2, -1)),
        inZone([&] { return tecZoneVarWriteFloatValues(handle, 2, 2, 0, 8, narrow); }),
        inZone([&] { return tecZoneVarWriteInt32Values(handle, 2, 2, 0, 8, whole); }),
        inZone([&] { return tecZoneNodeMapWrite32(handle, 2, 0, 1, 8, whole); }), // shared
        inZone([&] { return tecZoneSetUnsteadyOptions(handle, 2, NAN, 1); }),
        inZone([&] { return tecFileWriterFlush(handle, 0, nullptr); }), // not complete
        inZone(creating({})),
        afterWriting(3, timing),
        afterWriting(8, writing(2, 8))};
    for (const ZoneWish& wish : std::vector<ZoneWish>{{.nodes = 9}, // of the shared variable
                                                      {.nodes = 2147483648},
                                                      {.elements = -1},
                                                      {.types = {1, 2}},
                                                      {.types = {2, 4}},
                                                      {.shares = {2, 0}},
                                                      {.shares = {-1, 0}},
                                                      {.locations = {0, 1}},
                                                      {.locations = {1, 2}},
                                                      {.connectivity = 2},
                                                      {.type = 6},
                                                      {.passive = 1}})
        calls.push_back(creating(wish));
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(i);
        const Folder folder;
        handle = open("V,W");
        ASSERT_EQ(create(handle, {.shares = {0, 0}, .connectivity = 0}, zone), 0);
        for (const std::int32_t var : {1, 2}) EXPECT_EQ(writing(var, 8, 1)(), 0);
        EXPECT_EQ(tecZoneNodeMapWrite32(handle, 1, 0, 1, 8, whole), 0);
        EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
        EXPECT_EQ(calls[i](), refused);
        EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), refused);
        for (int close = 0; close < 2; ++close) EXPECT_EQ(tecFileWriterClose(&handle), refused);
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
    const DataSet set = data_set_file::read("s.szplt");
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
    addZone(handle, 2);
    const std::vector<double> values(1000);
    const std::int32_t zone = beginZone(handle, 3, 2000, {2});
    ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, 1000, values.data()), 0);
    handle = open(""); // whatever variables it has
    EXPECT_EQ(tecFileWriterFlush(handle, 0, nullptr), 0);
    expectTimes(2);
    addZone(handle, 3);
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    expectTimes(3);
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
                expectTimes(time);
            }
            if (!reopening || time % 1400 != 0) continue;
            handle = open("V", "another title");
            const std::string value(static_cast<std::size_t>(time / 1400), 'w');
            EXPECT_EQ(tecDataSetAddAuxData(handle, "k", value.c_str()), 0);
        }
        EXPECT_EQ(tecFileWriterClose(&handle), 0);
        expectTimes(zones);
        const DataSet set = data_set_file::read("s.szplt");
        EXPECT_EQ(set.title, "t");
        EXPECT_EQ(set.aux.at("k"), reopening ? "ww" : "v");
        EXPECT_FALSE(std::filesystem::exists("s.szplt.new"));
    }
}

// The system takes a write up page by page, and may be stopped between two of them. At any such
// moment the file must be whole.
std::ptrdiff_t writePages(int descriptor, const void* from, std::size_t size,
                          std::int64_t position) {
    constexpr std::int64_t page = 4096;
    const auto* source = static_cast<const char*>(from);
    const std::int64_t end = position + static_cast<std::int64_t>(size);
    for (std::int64_t at = position; at < end;) {
        const std::int64_t n = std::min(end - at, page - at % page);
        system_calls::systemTable().writeAt(descriptor, source + (at - position),
                                            static_cast<std::size_t>(n), at);
        at += n;
        if (!std::filesystem::exists("s.szplt")) continue;
        EXPECT_NO_THROW(data_set_file::read("s.szplt"));
    }
    return static_cast<std::ptrdiff_t>(size);
}

TEST(Tecio, AReaderFindsAWholeSetAtAnyMoment) {
    for (const int interval : {1, 45}) {
        const Folder folder;
        system_calls::table.writeAt = writePages;
        void* handle = open("V");
        for (int time = 1; time <= 100; ++time) {
            addZone(handle, time);
            if (time % 7 == 0) { // takes the last zone back
                handle = open("V");
                const auto length = static_cast<std::size_t>(800 + time);
                tecDataSetAddAuxData(handle, "k", std::string(length, 'k').c_str());
                tecDataSetAddAuxData(handle, "l", std::string(2000 - length, 'l').c_str());
                addZone(handle, time);
            }
            if (time % interval == 0) tecFileWriterFlush(handle, 0, nullptr);
            if (HasFailure()) break;
        }
        EXPECT_EQ(tecFileWriterClose(&handle), 0);
        system_calls::table = system_calls::systemTable();
        expectTimes(100);
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
    const int status = real.truncate(descriptor, std::max(end, facts.size));
    return status == 0 ? static_cast<std::ptrdiff_t>(size) : -1;
}

// As many values as there can be, in zones of 26 GB.
TEST(Tecio, CountsAndSizesBeyond32Bits) {
    if (!std::getenv("MESHRAKE_LONG_TESTS")) GTEST_SKIP() << "MESHRAKE_LONG_TESTS is not set";
    const Folder folder;
    system_calls::table.writeAt = writeSparse;
    system_calls::table.reserve = [](int, std::int64_t, std::int64_t) { return 0; };
    constexpr std::int64_t most = 2147483647, piece = 16777216;
    const std::vector<double> zeros(piece);
    void* handle = nullptr;
    for (const double time : {1.0, 2.0, 3.0}) {
        if (time != 2) handle = open("V,W");
        const std::int32_t zone = beginZone(handle, time, most, {2, 1});
        for (std::int64_t done = 0; done < most; done += piece) {
            const std::int64_t n = std::min(piece, most - done);
            const auto* narrow = reinterpret_cast<const float*>(zeros.data());
            ASSERT_EQ(tecZoneVarWriteDoubleValues(handle, zone, 1, 0, n, zeros.data()), 0);
            ASSERT_EQ(tecZoneVarWriteFloatValues(handle, zone, 2, 0, n, narrow), 0);
        }
    }
    beginZone(handle, 4, 1, {1, 1});
    const float values[] = {3, 4};
    for (const std::int32_t v : {1, 2})
        ASSERT_EQ(tecZoneVarWriteFloatValues(handle, 4, v, 0, 1, values + v - 1), 0);
    EXPECT_EQ(tecFileWriterClose(&handle), 0);
    system_calls::table = system_calls::systemTable();
    const Bytes end = bytes(299.0F, 1, 1, 0, 0, -1, 3.0, 3.0, 4.0, 4.0, 3.0F, 4.0F);
    const auto endBytes = static_cast<std::int64_t>(end.size());
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size("s.szplt"));
    Bytes found(end.size(), 0);
    std::ifstream file("s.szplt", std::ios::binary);
    file.seekg(size - endBytes);
    file.read(found.data(), endBytes);
    EXPECT_EQ(found, end);
    const std::int64_t header = size - 3 * (4 * (1 + 2 + 3) + 2 * 16 + most * 12) - endBytes;
    EXPECT_TRUE(header > 65536 && header < 600000) << header;
}

} // namespace
