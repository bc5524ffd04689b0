#include "tecio/own_functions.hpp"
#include "tests/support/power_cut.hpp"
#include "tests/support/runs.hpp"
#include "tests/tecio/tecio_calls.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

// Writers that resume unfinished data sets, after an interruption and with damaged files.
namespace {

using data_set_file::DataSet;
using sample_files::Bytes;
using sample_files::Folder;
using namespace tecio_calls;

const std::string sidecar = "s.szplt.szhdr";

struct Durable {
    Durable() { tecio::setDurable(true); }
    ~Durable() { tecio::setDurable(false); }
};

// The values of an incomplete zone are removed from the file.
TEST(TecioResume, NothingIsLeftOfAnIncompleteZone) {
    const Folder folder;
    open("V");
    addZone(1);
    beginNodes(2, 2000, {2});
    EXPECT_EQ(reals(1, Reals(1000)), 0);
    open(""); // accepts any variables
    EXPECT_EQ(flush(), 0);
    EXPECT_EQ(data_set_file::read("s.szplt").trailing, 0);
    addZone(2);
    finish(2);
}

// Many more zones than fit into the initial padding, by one writer and by several writers that
// resume the data set. A reader finds the zones of the last flush, a writer all zones.
TEST(TecioResume, ThePaddingForZonesGrows) {
    for (const int opening : {5000, 1400}) {
        const Folder folder;
        open("V");
        for (int time = 1; time <= 3000; ++time) {
            if (time % opening == 1) {
                if (time > 1) open("V", "another title");
                EXPECT_EQ(aux("k", std::to_string(time)), 0);
            }
            ASSERT_NO_FATAL_FAILURE(addZone(time));
            if (time % 2000 != 100) continue;
            EXPECT_EQ(flush(), 0);
            EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), time);
        }
        finish(3000);
        const DataSet found = data_set_file::read("s.szplt");
        EXPECT_EQ(found.title, "t");
        EXPECT_EQ(found.aux.at("k"), opening == 5000 ? "1" : "2801");
        EXPECT_FALSE(std::filesystem::exists("s.szplt.unfinished"));
    }
}

// For each number of zones, a later writer replaces those from each time on. The headers have a
// small part of a page, most of a page, a page without 16 bytes, a whole page, two pages without 16
// bytes, or more.
TEST(TecioResume, AnyZoneMayBeReplaced) {
    system_calls::table.sync = [](int) { return 0; };
    for (const auto& [titleLength, maximumZones] :
         {std::pair{100, 40}, {600, 12}, {1003, 6}, {1007, 6}, {2027, 6}, {2500, 6}}) {
        title = std::string(static_cast<std::size_t>(titleLength), 'z');
        for (int last = 1; last <= maximumZones; ++last)
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
                ASSERT_NO_FATAL_FAILURE(finish(last));
            }
    }
    system_calls::table = system_calls::systemTable();
    title = "z";
}

// The system writes page by page, and a process may be killed between two pages. The file must be
// valid after each page.
TEST(TecioResume, AReaderFindsAValidDataSetAfterEachPage) {
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
            open("V"); // replaces the last zone
            EXPECT_EQ(aux("k", Bytes(1000 + time * 3 / 7, 'k')), 0);
            EXPECT_EQ(aux("l", Bytes(2000 - time * 3 / 7, 'l')), 0);
            addZone(static_cast<double>(time));
        }
        system_calls::table = system_calls::systemTable();
        finish(100);
    }
}

// Returns a sidecar with the size and hash of its contents.
Bytes repaired(Bytes contents) {
    const std::uint64_t size = contents.size();
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : contents.substr(24))
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    std::memcpy(&contents[8], &size, sizeof size);
    std::memcpy(&contents[16], &hash, sizeof hash);
    return contents;
}

// A sidecar in which any word is changed or missing is refused, also with the hash of the changed
// contents. The checksum of a zone that is not the last is the only exception.
TEST(TecioResume, RefusesAnEditedSidecar) {
    const Durable durable;
    const Folder folder;
    open("V,W");
    EXPECT_EQ(create({4, 1, {2, 1}, {0, 0}, {1, 0}, 0, 3}) + at(1) + nodes({1, 2, 3, 4}) +
                  reals(1, {1, 2, 3, 4}) + narrow(2, {5}),
              0);
    EXPECT_EQ(create({4, 1, {2, 1}, {1, 0}, {1, 0}, 1, 3}) + at(2) + narrow(2, {6}) + flush(), 0);
    const Bytes whole = sample_files::get(sidecar), dataSet = sample_files::get("s.szplt");
    std::set<std::size_t> ignored; // words
    const auto edit = [&](std::size_t at, const Bytes& edited) {
        sample_files::put(sidecar, edited);
        if (tryOpen("") == 0) ignored.insert(at);
        EXPECT_TRUE(sample_files::get(sidecar) == edited);
        EXPECT_TRUE(sample_files::get("s.szplt") == dataSet);
    };
    for (std::size_t at = 24; at < whole.size(); at += 4) {
        edit(at, repaired(whole.substr(0, at)));
        for (const std::int32_t value : {-2, -1, 0, 1, 2, 6, 256, 2147483647}) {
            Bytes edited = whole;
            std::memcpy(&edited[at], &value, sizeof value);
            if (edited != whole) edit(at, repaired(edited));
        }
    }
    for (const std::int64_t size : {23, 100000}) {
        Bytes edited = whole;
        std::memcpy(&edited[8], &size, sizeof size);
        edit(8, edited);
    }
    EXPECT_EQ(ignored.size(), 2);
    sample_files::put(sidecar, whole);
    open("");
    EXPECT_EQ(tecFileWriterClose(&set), 0);
}

// A sidecar without zones belongs only to a data set without zones: a writer was killed before it
// replaced any other. A sidecar without a data set is replaced.
TEST(TecioResume, RecreatesADataSetWithoutZones) {
    const Folder folder;
    open("V");
    EXPECT_EQ(flush(), 0);
    const Bytes withoutZones = sample_files::get("s.szplt");
    EXPECT_EQ(tryOpen(""), 1);
    for (const std::string contents : {"", "short", "not a data set"}) {
        sample_files::put("s.szplt", contents);
        EXPECT_EQ(tryOpen("V"), 2);
        EXPECT_EQ(tryOpen(""), 2);
        EXPECT_EQ(sample_files::get("s.szplt"), contents);
    }
    sample_files::put("s.szplt", withoutZones);
    open("W", "another title");
    open("V");
    addZone(1);
    EXPECT_EQ(flush(), 0);
    const Bytes whole = sample_files::get("s.szplt");
    std::filesystem::remove(sidecar);
    open("V"); // a writer that replaces the data set
    for (const char* variables : {"V", ""}) EXPECT_EQ(tryOpen(variables), 3);
    EXPECT_TRUE(sample_files::get("s.szplt") == whole);
    std::filesystem::remove("s.szplt");
    open("W");
    addZone(1);
    finish(1);
}

TEST(TecioResume, RefusesAnotherMesh) {
    const Folder folder;
    open("V");
    addZone(1);
    addZone(2);
    EXPECT_EQ(flush(), 0);
    const Bytes whole = sample_files::get("s.szplt");
    EXPECT_EQ(tryOpen("W"), 4);
    const ZoneShape shapes[] = {{3, 0, {2}, {0}, {1}, 0},
                                {2, 1, {2}, {0}, {1}, 0},
                                {2, 0, {1}, {0}, {1}, 0},
                                {2, 0, {2}, {0}, {0}, 0},
                                {2, 0, {2}, {0}, {1}, 0, 4}};
    for (const ZoneShape& shape : shapes) {
        open("V");
        EXPECT_EQ(create(shape), 5);
    }
    open("V");
    EXPECT_EQ(create({2, 0, {2}, {2}, {1}, 0}) + at(2), 1); // shares with the zone that it replaces
    EXPECT_TRUE(sample_files::get("s.szplt") == whole);
    open("V");
    EXPECT_EQ(create({2, 0, {2}, {1}, {1}, 1}) + at(2, 7), 0); // no zone of that strand
    EXPECT_EQ(tecFileWriterClose(&set), 0);
    EXPECT_EQ(data_set_file::read("s.szplt").zones.size(), 3);
}

// The checksum does not depend on the pieces in which the values are written.
TEST(TecioResume, PiecesHaveTheChecksumOfTheWhole) {
    const Durable durable;
    Reals values;
    for (int i = 0; i < 300; ++i) values.push_back(i / 7.0);
    Bytes first;
    for (const std::ptrdiff_t piece : {300, 1, 5, 11}) {
        const Folder folder;
        open("V");
        beginNodes(1, 300, {2});
        for (auto from = values.begin(); from != values.end();) {
            const auto to = from + std::min(piece, values.end() - from);
            EXPECT_EQ(reals(1, {from, to}), 0);
            from = to;
        }
        EXPECT_EQ(flush(), 0);
        if (first.empty()) first = sample_files::get(sidecar);
        EXPECT_TRUE(sample_files::get(sidecar) == first);
    }
}

// A byte is changed; a sector is lost or erased, its signs are changed, or it has the contents of
// another sector. Equal values and changes of their signs do not cancel each other, at any position
// of the sector.
TEST(TecioResume, DetectsDamageOfTheLastZone) {
    constexpr std::size_t count = 640, sector = 512;
    using Damage = void (*)(Bytes&, std::size_t);
    const Damage damages[] = {
        [](Bytes& bytes, std::size_t at) { std::fill_n(&bytes[at], sector, '\0'); },
        [](Bytes& bytes, std::size_t at) { std::fill_n(&bytes[at], sector, '\xff'); },
        [](Bytes& bytes, std::size_t at) {
            for (std::size_t i = at + 7; i < at + sector; i += 8) bytes[i] ^= '\x80';
        },
        [](Bytes& bytes, std::size_t at) {
            std::swap_ranges(&bytes[at], &bytes[at + sector], &bytes[at + sector]);
        },
        [](Bytes& bytes, std::size_t at) { std::copy_n(&bytes[at + sector], sector, &bytes[at]); }};
    std::vector<Reals> cases(4, Reals(count));
    cases[1].assign(count, 2);
    for (std::size_t i = 0; i < count; ++i) cases[2][i] = i < count / 2 ? 1 : -1;
    for (std::size_t i = 0; i < count; ++i) cases[3][i] = static_cast<double>(i) / 7;
    for (const Reals& values : cases) {
        const Durable durable;
        const Folder folder;
        open("V");
        beginNodes(1, count, {2});
        EXPECT_EQ(reals(1, values) + flush(), 0);
        const Bytes whole = sample_files::get("s.szplt");
        const std::size_t begin = whole.size() - count * 8;
        const auto expectRefused = [&](std::size_t at, const Damage damage) {
            Bytes damaged = whole;
            damage(damaged, at);
            if (damaged == whole) return;
            sample_files::put("s.szplt", damaged);
            EXPECT_EQ(tryOpen("V"), 2) << at;
        };
        for (std::size_t at = begin - 16; at < whole.size(); at += 11) // also the range
            expectRefused(at, [](Bytes& bytes, std::size_t i) { bytes[i] ^= '\x80'; });
        for (std::size_t at = begin; at + 2 * sector <= whole.size(); at += 64)
            for (const Damage damage : damages) expectRefused(at, damage);
        sample_files::put("s.szplt", whole);
        open("V");
    }
    const Folder folder;
    open("V");
    addZone(1);
    EXPECT_EQ(flush(), 0);
    const Durable durable;
    EXPECT_EQ(tryOpen("V"), 6); // the data set was not durable
}

// A power cut while the file is copied for a longer record and zones with headers on several pages
// are replaced. The next writer finds the zones that were not replaced and can replace the others.
TEST(TecioResume, PowerCutWhileZonesAreReplaced) {
    const Durable durable;
    for (const std::size_t titleLength : {300U, 1003U, 2027U, 2500U}) {
        title = std::string(titleLength, 'z');
        const Folder folder;
        open("V");
        EXPECT_EQ(aux("k", "1"), 0);
        for (int time = 1; time <= 8; ++time) addZone(time);
        EXPECT_EQ(flush(), 0);
        system_calls::table = power_cut::recording(system_calls::systemTable());
        open("V");
        EXPECT_EQ(aux("k", "longer"), 0);
        for (int time = 2; time <= 8; ++time) addZone(time);
        EXPECT_EQ(flush(), 0);
        system_calls::table.sync = [](int) { return 0; };
        const std::vector<sample_files::Problem> states = power_cut::statesLeft(runs::longTests());
        EXPECT_GT(states.size(), 10U);
        for (std::size_t i = 0; i < states.size() && !HasFailure(); ++i) {
            SCOPED_TRACE(testing::Message() << titleLength << ", state " << i);
            for (const auto& [name, contents] : states[i]) sample_files::put(name, contents);
            open("V");
            for (int time = 2; time <= 8; ++time) addZone(time);
            finish(8);
        }
        system_calls::table = system_calls::systemTable();
    }
    title = "z";
}

} // namespace
