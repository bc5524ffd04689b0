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

using data_set_file::DataSet;
using sample_files::Bytes;
using sample_files::Folder;
using Numbers = std::vector<std::int32_t>;
using Reals = std::vector<double>;

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

// By default a brick, of whose two variables the first is that of zone 1.
struct Wish {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2, 2}, shares{1, 0}, locations{1, 1};
    std::int32_t connectivity = 1, type = 5, passive = 0;
};

// The calls on the data set at hand, and on its last zone.
void* set;
std::int32_t zone;
std::string title = "z"; // of each zone

void open(const char* variables, const char* setTitle = "t") {
    EXPECT_EQ(tecFileWriterOpen("s", setTitle, variables, 1, 0, 0, nullptr, &set), 0);
}
int flush() {
    return tecFileWriterFlush(set, 0, nullptr);
}
int create(const Wish& w) {
    const Numbers passive(w.types.size(), w.passive);
    return tecZoneCreateFE(set, title.c_str(), w.type, w.nodes, w.elements, w.types.data(),
                           w.shares.data(), w.locations.data(), passive.data(), w.connectivity, 0,
                           0, &zone);
}
int at(double time) {
    return tecZoneSetUnsteadyOptions(set, zone, time, 1);
}
int reals(std::int32_t var, const Reals& values, std::int32_t partition = 0) {
    return tecZoneVarWriteDoubleValues(set, zone, var, partition,
                                       static_cast<std::int64_t>(values.size()), values.data());
}
int narrow(std::int32_t var, const std::vector<float>& values) {
    return tecZoneVarWriteFloatValues(set, zone, var, 0, static_cast<std::int64_t>(values.size()),
                                      values.data());
}
int nodes(const Numbers& list) {
    return tecZoneNodeMapWrite32(set, zone, 0, 1, static_cast<std::int64_t>(list.size()),
                                 list.data());
}

// Begins a zone of nodes alone, with variables of its own.
void beginNodes(double time, std::int64_t count, const Numbers& types) {
    const Numbers own(types.size(), 0), nodal(types.size(), 1);
    EXPECT_EQ(create({count, 0, types, own, nodal, 0}) + at(time) + nodes({}), 0);
}

// A zone whose one variable is its time.
int putZone(double time) {
    return create({2, 0, {2}, {0}, {1}, 0}) + at(time) + nodes({}) + reals(1, {time, time});
}
void addZone(double time) {
    ASSERT_EQ(putZone(time), 0);
}

// The values of each zone must be its time, from 1 to `lastTime`.
void expectTimes(int lastTime) {
    const DataSet found = data_set_file::read("s.szplt");
    EXPECT_EQ(found.trailing, 0);
    ASSERT_EQ(found.zones.size(), static_cast<std::size_t>(lastTime));
    for (int z = 0; z < lastTime; ++z)
        ASSERT_EQ(found.zones[static_cast<std::size_t>(z)].values[0], Reals(2, z + 1));
}

void close(int lastTime) {
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    EXPECT_FALSE(set || std::filesystem::exists("s.szplt.szhdr"));
    expectTimes(lastTime);
}

// One quadrilateral, five variables, two zones, of which the second has but one array.
TEST(Tecio, EveryByteOfASmallSet) {
    const Folder folder;
    open("X,Y,Z,Zone,H");
    const std::int32_t seven = 7;
    EXPECT_EQ(tecDataSetAddAuxData(set, "k", "v"), 0);
    EXPECT_EQ(tecDataSetAddAuxData(set, "blank", "  "), 0);
    EXPECT_EQ(tecVarAddAuxData(set, 5, "Units", "(m)"), 0);
    Wish wish{4, 1, {2, 2, 2, 3, 1}, {0, 0, 0, 0, 0}, {1, 1, 1, 0, 1}, 0, 3};
    EXPECT_EQ(create(wish) + at(0), 0);
    EXPECT_EQ(reals(1, {0, 1, 1, 0}) + reals(3, {5, 5, 5, 5}), 0); // in any order
    EXPECT_EQ(reals(2, {0}) + reals(2, {0, 1, 1}), 0);             // in any pieces
    EXPECT_EQ(nodes({1, 2, 3}) + nodes({4}), 0);
    EXPECT_EQ(tecZoneVarWriteInt32Values(set, 1, 4, 0, 1, &seven) + narrow(5, {1, 2, 3, 4}), 0);
    wish.shares = {1, 1, 1, 1, 0};
    wish.connectivity = 1;
    EXPECT_EQ(create(wish) + at(10) + narrow(5, {1.5F, 2.5F, 3.5F, 4.5F}), 0);
    EXPECT_EQ(tecFileWriterClose(&set), 0);

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
}

TEST(Tecio, RangesLeaveOutNaN) {
    const double inf = HUGE_VAL, nan = NAN;
    Reals many(1000, nan);
    many[77] = -3;
    many[999] = 4;
    for (const Reals& values :
         std::vector<Reals>{many, {nan}, {inf, nan}, {-inf}, {nan, -0.5}, {-1, inf}}) {
        const Folder folder;
        open("V,W");
        beginNodes(0, static_cast<std::int64_t>(values.size()), {2, 1});
        EXPECT_EQ(reals(1, values) + narrow(2, {values.begin(), values.end()}), 0);
        EXPECT_EQ(tecFileWriterClose(&set), 0);
        EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), 1); // compares the ranges
    }
}

// Each call fails, whatever follows fails too, and the set stays as it was flushed last.
TEST(Tecio, RefusesWhatDoesNotFit) {
    const Reals eight(8);
    const Numbers whole(8);
    std::vector<std::function<int()>> calls{
        [] { return tecVarAddAuxData(set, 1, "n", "v"); }, // a zone is there
        [&] { return reals(1, eight); },
        [] { return at(5); }, // none is open
        [&] { return create({}) + narrow(2, {0}); },
        [&] { return create({}) + nodes(whole); },
        [] { return create({}) + at(NAN); },
        [] { return create({}) + flush(); },
        [] { return create({}) + create({}); },
        [] { return create({}) + reals(2, {0}) + at(5); },
        [&] { return create({}) + reals(2, eight) + reals(2, eight); },
        [&] { return create({}) + tecZoneVarWriteInt32Values(set, zone, 2, 0, 8, whole.data()); }};
    const Numbers writes[] = {{1, 2, 0, 8}, {2, 1, 0, 8}, {2, 3, 0, 8}, {2, 0, 0, 8},
                              {2, 2, 1, 8}, {2, 2, 0, 9}, {2, 2, 0, -1}};
    for (const Numbers& w : writes)
        calls.push_back([&] {
            return create({}) +
                   tecZoneVarWriteDoubleValues(set, w[0], w[1], w[2], w[3], eight.data());
        });
    const Wish wishes[] = {{.nodes = 9},        {.nodes = 2147483648}, {.elements = -1},
                           {.types = {1, 2}},   {.types = {2, 4}},     {.shares = {2, 0}},
                           {.shares = {-1, 0}}, {.locations = {0, 1}}, {.locations = {1, 2}},
                           {.connectivity = 2}, {.type = 6},           {.passive = 1}};
    for (const Wish& wish : wishes) calls.push_back([&] { return create(wish); });
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(i);
        const Folder folder;
        open("V,W");
        EXPECT_EQ(create({.shares = {0, 0}, .connectivity = 0}), 0);
        EXPECT_EQ(reals(1, eight) + reals(2, eight) + nodes(whole) + flush(), 0);
        EXPECT_EQ(calls[i](), 1);
        EXPECT_EQ(flush() + tecFileWriterClose(&set) + tecFileWriterClose(&set), 3);
        EXPECT_TRUE(std::filesystem::exists("s.szplt.szhdr"));
        EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), 1);
    }
}

// A variable that a shared zone has from another comes from that one.
TEST(Tecio, SharesEndAtTheZoneWithTheValues) {
    const Folder folder;
    open("V");
    addZone(1);
    for (const std::int32_t from : {1, 2, 3})
        EXPECT_EQ(create({2, 0, {2}, {from}, {1}, from}) + at(from + 1), 0);
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    const DataSet found = data_set_file::read("s.szplt");
    ASSERT_EQ(found.zones.size(), 4);
    EXPECT_EQ(found.zones[3].shares, Numbers{1});
    EXPECT_EQ(found.zones[3].connectivityShare, 1);
}

// What a zone that was never completed left in the file goes.
TEST(Tecio, NothingIsLeftOfAZoneCutShort) {
    const Folder folder;
    open("V");
    addZone(1);
    beginNodes(2, 2000, {2});
    EXPECT_EQ(reals(1, Reals(1000)), 0);
    open(""); // whatever variables it has
    EXPECT_EQ(flush(), 0);
    EXPECT_EQ(data_set_file::read("s.szplt").trailing, 0);
    addZone(2);
    close(2);
}

// Far more zones than the header has room for at first, by one writer and by several that go on
// from each other; a reader sees those of the last flush, a writer all.
TEST(Tecio, TheRoomForZonesGrows) {
    for (const int opening : {5000, 1400}) {
        const Folder folder;
        open("V");
        for (int time = 1; time <= 3000; ++time) {
            if (time % opening == 1) {
                if (time > 1) open("V", "another title");
                EXPECT_EQ(tecDataSetAddAuxData(set, "k", std::to_string(time).c_str()), 0);
            }
            ASSERT_NO_FATAL_FAILURE(addZone(time));
            if (time % 2000 != 100) continue;
            EXPECT_EQ(flush(), 0);
            EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), time);
        }
        close(3000);
        const DataSet found = data_set_file::read("s.szplt");
        EXPECT_EQ(found.title, "t");
        EXPECT_EQ(found.aux.at("k"), opening == 5000 ? "1" : "2801");
        EXPECT_FALSE(std::filesystem::exists("s.szplt.new"));
    }
}

// For each number of zones, a later writer replaces those from each time on. The headers take a
// small part of a page, most of one, one but for 16 bytes or whole, two but for 16 bytes, or more.
TEST(Tecio, AnyZoneMayBeReplaced) {
    for (const auto& [titleLength, most] :
         {std::pair{100, 40}, {600, 12}, {1003, 6}, {1007, 6}, {2027, 6}, {2500, 6}}) {
        title = std::string(static_cast<std::size_t>(titleLength), 'z');
        for (int last = 1; last <= most; ++last)
            for (int first = 1; first <= last; ++first) {
                SCOPED_TRACE(testing::Message() << titleLength << " " << last << " " << first);
                const Folder folder;
                open("V");
                for (int time = 1; time <= last; ++time) {
                    addZone(time);
                    EXPECT_EQ(time % 3 == 0 ? flush() : 0, 0);
                }
                EXPECT_EQ(flush(), 0);
                open("V");
                for (int time = first; time <= last; ++time) addZone(time);
                EXPECT_EQ(flush(), 0);
                ASSERT_NO_FATAL_FAILURE(expectTimes(last));
                open("V");
                ASSERT_NO_FATAL_FAILURE(close(last));
            }
    }
    title = "z";
}

// Any write may be the last while headers of several pages are replaced; the next writer repairs
// them.
TEST(Tecio, AHeaderOfSeveralPagesMayBeCut) {
    static int writes;
    for (const int titleLength : {1003, 2027, 2500}) {
        title = std::string(static_cast<std::size_t>(titleLength), 'z');
        bool failed = true;
        for (int most = 0; failed; ++most) {
            const Folder folder;
            open("V");
            for (const double time : {1, 2, 3, 4}) addZone(time);
            EXPECT_EQ(flush(), 0);
            open("V");
            writes = most;
            system_calls::table.writeAt = [](int d, const void* from, std::size_t size,
                                             std::int64_t to) -> std::ptrdiff_t {
                return writes-- > 0 ? system_calls::systemTable().writeAt(d, from, size, to) : -1;
            };
            failed = putZone(3) + putZone(4) + flush() != 0;
            system_calls::table = system_calls::systemTable();
            open("V");
            addZone(3);
            EXPECT_EQ(flush(), 0);
            ASSERT_NO_FATAL_FAILURE(expectTimes(3));
            addZone(4);
            ASSERT_NO_FATAL_FAILURE(close(4));
        }
    }
    title = "z";
}

// The system takes a write up page by page, and may be stopped between two of them. At any such
// moment the file must be whole.
TEST(Tecio, AReaderFindsAWholeSetAtAnyMoment) {
    const auto writePages = [](int d, const void* from, std::size_t size, std::int64_t position) {
        const auto all = static_cast<std::ptrdiff_t>(size);
        for (std::ptrdiff_t done = 0; done < all;) {
            const std::ptrdiff_t n = std::min(all - done, 4096 - (position + done) % 4096);
            system_calls::systemTable().writeAt(d, static_cast<const char*>(from) + done,
                                                static_cast<std::size_t>(n), position + done);
            done += n;
            if (std::filesystem::exists("s.szplt")) data_set_file::read("s.szplt");
        }
        return all;
    };
    for (const std::size_t interval : {std::size_t{1}, std::size_t{45}}) {
        const Folder folder;
        system_calls::table.writeAt = writePages;
        open("V");
        for (std::size_t time = 1; time <= 100; ++time) {
            addZone(static_cast<double>(time));
            EXPECT_EQ(time % interval == 0 ? flush() : 0, 0);
            if (time % 7 != 0) continue;
            open("V"); // takes the last zone back
            EXPECT_EQ(tecDataSetAddAuxData(set, "k", Bytes(1000 + time * 3 / 7, 'k').c_str()), 0);
            EXPECT_EQ(tecDataSetAddAuxData(set, "l", Bytes(2000 - time * 3 / 7, 'l').c_str()), 0);
            addZone(static_cast<double>(time));
        }
        system_calls::table = system_calls::systemTable();
        close(100);
    }
}

// As many values as there can be, in zones of 26 GB; large writes leave a hole in the file.
TEST(Tecio, CountsAndSizesBeyond32Bits) {
    if (!std::getenv("MESHRAKE_LONG_TESTS")) GTEST_SKIP() << "MESHRAKE_LONG_TESTS is not set";
    const Folder folder;
    system_calls::table.reserve = [](int, std::int64_t, std::int64_t) { return 0; };
    system_calls::table.writeAt = [](int d, const void* from, std::size_t size, std::int64_t to) {
        const system_calls::Table real = system_calls::systemTable();
        const auto all = static_cast<std::ptrdiff_t>(size);
        if (size < 1000000) return real.writeAt(d, from, size, to);
        system_calls::FileFacts facts;
        real.facts(d, facts);
        return real.truncate(d, std::max(to + all, facts.size)) == 0 ? all : -1;
    };
    constexpr std::int64_t most = 2147483647, piece = 16777216;
    const std::vector<float> zeros(piece);
    for (const double time : {1.0, 2.0, 3.0}) {
        if (time != 2) open("V,W");
        beginNodes(time, most, {1, 1});
        for (const std::int32_t var : {1, 2})
            for (std::int64_t done = 0; done < most; done += piece) {
                const std::int64_t n = std::min(piece, most - done);
                ASSERT_EQ(tecZoneVarWriteFloatValues(set, zone, var, 0, n, zeros.data()), 0);
            }
    }
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    system_calls::table = system_calls::systemTable();
    const std::int64_t zones = 3 * (4 * (1 + 2 + 3) + 2 * 16 + most * 8);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size("s.szplt"));
    EXPECT_TRUE(zones + 65536 < size && size < zones + 600000) << size;
}

} // namespace
