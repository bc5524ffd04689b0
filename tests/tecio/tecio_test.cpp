#include "tecio/own_functions.hpp"
#include "tests/support/runs.hpp"
#include "tests/tecio/tecio_calls.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cmath>
#include <functional>

// The writer library: its bytes, invalid calls, and large data sets.
namespace {

using data_set_file::DataSet;
using sample_files::Bytes;
using sample_files::Folder;
using namespace tecio_calls;

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

// One quadrilateral, five variables, and two zones, the second of which has one array.
TEST(Tecio, EveryByteOfASmallDataSet) {
    const Folder folder;
    open("X,Y,Z,Zone,H");
    const std::int32_t seven = 7;
    EXPECT_EQ(aux("k", "v") + aux("blank", "  ") + tecVarAddAuxData(set, 5, "Units", "(m)"), 0);
    ZoneShape shape{4, 1, {2, 2, 2, 3, 1}, {0, 0, 0, 0, 0}, {1, 1, 1, 0, 1}, 0, 3};
    EXPECT_EQ(create(shape) + at(0), 0);
    EXPECT_EQ(reals(1, {0, 1, 1, 0}) + reals(3, {5, 5, 5, 5}), 0); // in any order
    EXPECT_EQ(reals(2, {0}) + reals(2, {0, 1, 1}), 0);             // in any pieces
    const std::int32_t fromZero = 0;
    EXPECT_EQ(tecZoneNodeMapWrite32(set, zone, 0, 0, 1, &fromZero) + nodes({2, 3}) + nodes({4}), 0);
    EXPECT_EQ(tecZoneVarWriteInt32Values(set, 1, 4, 0, 1, &seven) + narrow(5, {1, 2, 3, 4}), 0);
    shape.shares = {1, 1, 1, 1, 0};
    shape.connectivity = 1;
    EXPECT_EQ(create(shape) + at(10) + narrow(5, {1.5F, 2.5F, 3.5F, 4.5F}), 0);
    EXPECT_EQ(tecFileWriterClose(&set), 0);

    const auto zoneHeader = [](double time) {
        return bytes(299.0F) + text("z") + bytes(-1, 1) + bytes(time) + bytes(-1, 3, 1) +
               bytes(0, 0, 0, 1, 0) + bytes(0, 0, 4, 1, 0, 0, 0, 0);
    };
    const Bytes headers = Bytes("#!TDV112") + bytes(1, 0) + text("t") + bytes(5) + text("X") +
                          text("Y") + text("Z") + text("Zone") + text("H") + bytes(799.0F) +
                          text("k") + bytes(0) + text("v") + bytes(899.0F, 4) + text("Units") +
                          bytes(0) + text("(m)") + zoneHeader(0) + zoneHeader(10);
    const Bytes data = bytes(357.0F, 299.0F, 2, 2, 2, 3, 1, 0, 0, -1) +
                       bytes(0.0, 1.0, 0.0, 1.0, 5.0, 5.0, 7.0, 7.0, 1.0, 4.0) +
                       bytes(0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 5.0, 5.0, 5.0, 5.0, 7) +
                       bytes(1.0F, 2.0F, 3.0F, 4.0F, 0, 1, 2, 3) +
                       bytes(299.0F, 2, 2, 2, 3, 1, 0, 1, 0, 0, 0, 0, -1, 0) + bytes(1.5, 4.5) +
                       bytes(1.5F, 2.5F, 3.5F, 4.5F);
    const auto padding = [](std::size_t size) {
        return bytes(799.0F) + text("_") + bytes(0) + text(std::string(size / 4 - 5, ' '));
    };
    const Bytes found = sample_files::get("s.szplt");
    EXPECT_EQ(found.substr(0, 8192), headers + padding(4096 - headers.size()) + padding(4096));
    EXPECT_EQ(found.substr(found.size() - data.size() - 4096), padding(4096) + data);
}

TEST(Tecio, RangesExcludeNaN) {
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
        EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), 1); // the reader checks the ranges
    }
}

// Each call fails. All calls after it also fail, and the data set has the state of the last flush.
TEST(Tecio, RefusesInvalidCalls) {
    const Reals eight(8);
    const Numbers whole(8);
    std::vector<std::function<int()>> calls{
        [] { return tecVarAddAuxData(set, 1, "n", "v"); }, // after a zone
        [&] { return reals(1, eight); },
        [] { return at(5); }, // without a current zone
        [&] { return create({}) + narrow(2, {0}); },
        [&] { return create({}) + nodes(whole); },
        [&] { return create({.connectivity = 0}) + nodes(whole) + nodes({}); },
        [&] { return create({.connectivity = 0}) + nodes(Numbers(9)); },
        [&] {
            return create({.connectivity = 0}) +
                   tecZoneNodeMapWrite32(set, zone, 0, 0, -1, whole.data());
        },
        [] { return create({}) + at(NAN); },
        [] { return create({}) + at(1, -1); },
        [] { return create({}) + flush(); },
        [] { return create({}) + create({}); },
        [] { return create({}) + tecFileWriterClose(&set); },
        [] { return create({}) + reals(2, {0}) + at(5); },
        [&] { return create({}) + reals(2, eight) + reals(2, eight); },
        [&] {
            return create({.shares = {0, 0}}) + reals(2, eight) + reals(2, {});
        },
        [&] { return create({}) + tecZoneVarWriteInt32Values(set, zone, 2, 0, 8, whole.data()); }};
    const Numbers writes[] = {{1, 2, 0, 8}, {0, 2, 0, 8}, {2, 1, 0, 8}, {2, 3, 0, 8},
                              {2, 0, 0, 8}, {2, 2, 1, 8}, {2, 2, 0, 9}, {2, 2, 0, -1}};
    for (const Numbers& w : writes)
        calls.push_back([&] {
            return create({}) +
                   tecZoneVarWriteDoubleValues(set, w[0], w[1], w[2], w[3], eight.data());
        });
    // clang-format off
    const ZoneShape shapes[] = {
        {.nodes = -1}, {.nodes = 9}, {.nodes = 2147483648}, {.nodes = 9, .shares = {0, 0}},
        {.elements = -1}, {.elements = 2}, {.elements = 2147483648},
        {.types = {1, 2}}, {.types = {2, 4}}, {.types = {2, 0}},
        {.shares = {2, 0}}, {.shares = {-1, 0}},
        {.locations = {0, 1}}, {.locations = {1, 2}}, {.locations = {1, -1}},
        {.connectivity = 2}, {.connectivity = -1}, {.type = -1}, {.type = 4}, {.type = 6},
        {.passive = 1}, {.faceConnections = 1}};
    // clang-format on
    for (const ZoneShape& shape : shapes) calls.push_back([&] { return create(shape); });
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

TEST(Tecio, RefusesBeforeTheFirstZone) {
    const Folder folder;
    int grid = 0;
    for (const auto& [format, type, gridFile] :
         {std::tuple{0, 0, false}, {1, 1, false}, {1, 0, true}})
        EXPECT_EQ(
            tecFileWriterOpen("s", "t", "V", format, type, 0, gridFile ? &grid : nullptr, &set), 1);
    EXPECT_EQ(flush(), 1);
    for (const std::int32_t var : {-1, 0, 2}) {
        open("V");
        EXPECT_EQ(tecVarAddAuxData(set, var, "Units", "m"), 1);
    }
    open("V");
    EXPECT_EQ(tecVarAddAuxData(set, 1, "Units", " ") + flush(), 0);
    EXPECT_EQ(aux("k", "v"), 1); // after the records were written
}

// A share of a shared array is a share of the zone with the values.
TEST(Tecio, SharesReferToTheZoneWithTheValues) {
    const Folder folder;
    open("V");
    addZone(1);
    for (const std::int32_t from : {1, 2, 3})
        EXPECT_EQ(create({2, 0, {2}, {from}, {1}, from}) + at(from + 1), 0);
    EXPECT_EQ(create({2, 0, {2}, {4}, {1}, 4}), 0); // complete without a time
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    const DataSet found = data_set_file::read("s.szplt");
    ASSERT_EQ(found.zones.size(), 5);
    EXPECT_EQ(found.zones[4].shares, Numbers{1});
    EXPECT_EQ(found.zones[4].connectivityShare, 1);
    EXPECT_EQ(found.zones[4].strand, -1);
}

// The maximum number of values, in zones of 17 GB. Large writes leave holes in the file.
TEST(Tecio, CountsAndSizesBeyond32Bits) {
    if (!runs::longTests()) GTEST_SKIP() << "MESHRAKE_LONG_TESTS is not set";
    const Folder folder;
    system_calls::table.reserve = [](int, std::int64_t, std::int64_t) { return 0; };
    system_calls::table.writeAt = [](int d, const void* from, std::size_t size, std::int64_t to) {
        const system_calls::Table real = system_calls::systemTable();
        const auto all = static_cast<std::ptrdiff_t>(size);
        if (size < 1000000) return real.writeAt(d, from, size, to);
        system_calls::FileInfo info;
        real.fileInfo(d, info);
        return real.truncate(d, std::max(to + all, info.size)) == 0 ? all : -1;
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

TEST(Tecio, ResetClosesOpenDataSetsUnfinished) {
    const Folder folder;
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    tecio::reset(); // data sets of other tests
    const auto before = openFiles();
    open("T");
    addZone(1);
    EXPECT_GT(openFiles(), before);
    tecio::reset();
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(flush(), 1); // the handle is unknown
    EXPECT_TRUE(std::filesystem::exists("s.szplt.szhdr"));
    open("T");
    addZone(2);
    finish(2);
}

} // namespace
