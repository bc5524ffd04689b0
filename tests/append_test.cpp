#include "tests/runs.hpp"
#include "tools/data_set_file.hpp"
#include "tvncommon/system_calls.hpp"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Runs that go on from the binary data sets of earlier ones, also of such as were killed.
namespace {

using namespace sample_files;
using data_set_file::DataSet;
using runs::Ran;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

bool longTests() {
    return std::getenv("MESHRAKE_LONG_TESTS") != nullptr;
}

std::string control(const std::string& topLevel = "", const std::string& pm = "",
                    bool withOlf = true) {
    return "tecplot binary mode\ntecplot binary append\n" + topLevel +
           "end\nwrite pm domain file\n" + pm + "end\n" +
           (withOlf ? "write olf domain file\nend\n" : "");
}

// The simulator's files up to an output time. Saturations come at every other one.
void putTimes(int times) {
    Problem problem = brickProblem({2, 1, 1, times});
    for (int t = 1; t <= times; t += 2)
        problem["to.sat_pm.000" + std::to_string(t)] =
            resultFile("0.0", {std::vector<float>(12, 0.1F * static_cast<float>(t))});
    write(problem);
}

int lastIndex() {
    const Bytes file = get("to.tec_append");
    std::int32_t index = 0;
    if (file.size() == 12) std::memcpy(&index, file.data() + 4, 4);
    return index;
}

void putIndex(std::int32_t index) {
    put("to.tec_append", integerRecord({index}));
}

std::vector<double> timesOf(const DataSet& set) {
    std::vector<double> times;
    for (const auto& zone : set.zones) times.push_back(zone.time);
    return times;
}

// Whatever a zone shares, it must have what the data set of one run over all times has.
void expectSameContents(const DataSet& set, const DataSet& whole) {
    EXPECT_EQ(std::tie(set.title, set.variables, set.units),
              std::tie(whole.title, whole.variables, whole.units));
    ASSERT_EQ(timesOf(set), timesOf(whole));
    EXPECT_EQ(set.trailing, 0);
    const auto sourceOf = [](const DataSet& s, std::size_t zone, std::int32_t share) {
        return share > 0 ? s.zones[static_cast<std::size_t>(share - 1)] : s.zones[zone];
    };
    for (std::size_t z = 0; z < set.zones.size(); ++z) {
        for (std::size_t v = 0; v < set.variables.size(); ++v)
            EXPECT_EQ(sourceOf(set, z, set.zones[z].shares[v]).values[v],
                      sourceOf(whole, z, whole.zones[z].shares[v]).values[v])
                << "zone " << z + 1 << " " << set.variables[v];
        EXPECT_EQ(sourceOf(set, z, set.zones[z].connectivityShare).elementNodes,
                  sourceOf(whole, z, whole.zones[z].connectivityShare).elementNodes);
    }
}

struct Sets {
    DataSet pm, olf;
};

Sets readSets() {
    return {data_set_file::read("to.pm.szplt"), data_set_file::read("to.olf.szplt")};
}

void expectSameContents(const Sets& sets, const Sets& whole) {
    expectSameContents(sets.pm, whole.pm);
    expectSameContents(sets.olf, whole.olf);
}

// The data sets of one run over all times.
Sets wholeSets(int times) {
    const Folder folder;
    putTimes(times);
    put("t.plot.control", control());
    EXPECT_EQ(runs::runHere().status, 0);
    return readSets();
}

TEST(Append, RunsInTurnEqualOneRun) {
    const Sets whole = wholeSets(6);
    for (const char* interval : {"1", "2", "5"}) {
        const Folder folder;
        put("t.plot.control",
            control("tecplot binary flush interval\n" + std::string(interval) + "\n"));
        for (const int times : {2, 3, 3, 6}) {
            const int before = lastIndex();
            putTimes(times);
            const Ran ran = runs::runHere();
            EXPECT_EQ(ran.status, 0) << ran.errors;
            EXPECT_THAT(ran.screen, HasSubstr("\nAppending to Tecplot output\nStarting at time "
                                              "index 000" +
                                              std::to_string(before + 1) + "\n\n"));
            EXPECT_THAT(ran.screen, Not(HasSubstr("Closing tecplot file")));
            EXPECT_EQ(ran.screen.find("No more data to append") != std::string::npos, before > 0);
            EXPECT_EQ(lastIndex(), times);
            const Sets sets = readSets();
            ASSERT_EQ(sets.pm.zones.size(), static_cast<std::size_t>(times));
            if (times == before) continue;
            EXPECT_THAT(sets.olf.zones[static_cast<std::size_t>(before)].shares, Each(0));
            EXPECT_EQ(sets.olf.zones[static_cast<std::size_t>(before)].connectivityShare, 0);
        }
        const Sets sets = readSets();
        expectSameContents(sets, whole);
        EXPECT_EQ(sets.pm.zones[5].connectivityShare, 1);
    }
}

// What the caller of the system can be made to do at one call that changes a file.
enum class Mishap { killed, killedInWrite, diskFull };

struct Watch {
    Mishap mishap = Mishap::killed;
    int countdown = 0;
    bool met = false;
    std::set<int> ignored{1, 2}; // descriptors whose writes do not count
};
Watch watch;

// True when this call is to fail.
bool strikes(bool growing, const std::function<void()>& half = {}) {
    if (watch.met) return growing; // a disk that is full stays so
    if (--watch.countdown != 0) return false;
    if (watch.mishap == Mishap::killedInWrite && half) half();
    if (watch.mishap != Mishap::diskFull) _exit(0);
    watch.met = true;
    errno = ENOSPC;
    return true;
}

system_calls::Table watchedTable() {
    using namespace system_calls;
    static const Table real = runs::keepingTable();
    Table table = real;
    table.open = [](const char* path, OpenMode mode) {
        if (mode != OpenMode::read && strikes(false)) return -1;
        const int descriptor = real.open(path, mode);
        const std::string name = path;
        const bool matters = longTests() || (name != "to.meshrake.eco" && name != "scratch_plot");
        if (matters)
            watch.ignored.erase(descriptor);
        else
            watch.ignored.insert(descriptor);
        return descriptor;
    };
    table.write = [](int d, const void* from, std::size_t size) {
        const auto half = [&] { real.write(d, from, size / 2); };
        if (watch.ignored.count(d) == 0 && strikes(true, half)) return std::ptrdiff_t{-1};
        return real.write(d, from, size);
    };
    table.writeAt = [](int d, const void* from, std::size_t size, std::int64_t position) {
        // So few bytes in one page are there or not.
        const std::size_t few = 16;
        const auto half = [&] { real.writeAt(d, from, size > few ? size / 8 * 4 : 0, position); };
        return strikes(true, half) ? -1 : real.writeAt(d, from, size, position);
    };
    table.truncate = [](int d, std::int64_t size) {
        return strikes(false) ? -1 : real.truncate(d, size);
    };
    table.reserve = [](int d, std::int64_t position, std::int64_t size) {
        return strikes(true) ? -1 : real.reserve(d, position, size);
    };
    table.rename = [](const char* from, const char* to) {
        return strikes(false) ? -1 : real.rename(from, to);
    };
    table.remove = [](const char* path) { return strikes(false) ? -1 : real.remove(path); };
    return table;
}

// A run that meets the mishap at this call; false when it has fewer calls.
bool runInto(Mishap mishap, int call) {
    watch = {};
    watch.mishap = mishap;
    watch.countdown = call;
    if (mishap == Mishap::diskFull) {
        system_calls::table = watchedTable();
        const Ran ran = runs::runHere();
        system_calls::table = system_calls::systemTable();
        const bool banner = ran.errors.find("HALTING EXECUTION") != std::string::npos;
        EXPECT_EQ(ran.status != 0, banner);
        return watch.met;
    }
    const pid_t child = fork();
    if (child == 0) {
        system_calls::table = watchedTable();
        runs::runHere();
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status) == 0;
}

// A file that is there can be read at any time.
void expectReadable() {
    for (const char* name : {"to.pm.szplt", "to.olf.szplt"}) {
        if (!std::filesystem::exists(name)) continue;
        EXPECT_NO_THROW(data_set_file::read(name)) << name;
    }
}

// Each call in turn meets the mishap, in a first run, in one that continues, in one that begins a
// data set beside another and in one that takes a zone back. The next run puts all in order.
TEST(Append, AnyCallMayBeTheLast) {
    constexpr int times = 4;
    const Sets whole = wholeSets(times);
    for (const auto& [before, recorded, withOlf] :
         {std::tuple{0, 0, true}, {2, 2, true}, {2, 2, false}, {3, 2, true}})
        for (const Mishap mishap : {Mishap::killed, Mishap::killedInWrite, Mishap::diskFull}) {
            if ((before == 0 || !withOlf) && mishap != Mishap::killed && !longTests()) continue;
            const Folder home;
            if (before > 0) {
                putTimes(before);
                put("t.plot.control", control("", "", withOlf));
                ASSERT_EQ(runs::runHere().status, 0);
                putIndex(recorded);
            }
            putTimes(times);
            put("t.plot.control", control("tecplot binary flush interval\n3\n"));
            int calls = 0;
            for (bool met = true; met; ++calls) {
                SCOPED_TRACE(testing::Message()
                             << "before " << before << ", mishap " << static_cast<int>(mishap)
                             << ", call " << calls + 1);
                const Folder folder;
                std::filesystem::copy(home.path, folder.path);
                met = runInto(mishap, calls + 1);
                if (mishap != Mishap::killedInWrite) expectReadable();
                const Ran ran = runs::runHere();
                ASSERT_EQ(ran.status, 0) << ran.errors;
                EXPECT_EQ(lastIndex(), times);
                const Sets sets = readSets();
                expectSameContents(sets.pm, whole.pm);
                if (withOlf)
                    expectSameContents(sets.olf, whole.olf);
                else
                    EXPECT_THAT(timesOf(sets.olf), ElementsAre(20, 30));
                if (HasFailure()) return;
            }
            EXPECT_GT(calls, 40);
        }
}

// A larger problem, and the program itself, killed at instants that fall as they may.
TEST(Append, KilledAtAnyInstant) {
    const Folder home;
    makeProblem("--nx 40 --ny 30 --layers 10 --times 12");
    put("batch.pfx", "t\n");
    put("t.plot.control", control("tecplot binary flush interval\n3\n"));
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    ASSERT_EQ(runs::runProgram().status, 0);
    const std::chrono::duration<double> duration = Clock::now() - begin;
    const Sets whole = readSets();
    for (const char* made : {"to.pm.szplt", "to.olf.szplt", "to.pm.szplt.szhdr",
                             "to.olf.szplt.szhdr", "to.tec_append"})
        std::filesystem::remove(made);

    std::mt19937 random(1);
    std::uniform_real_distribution<double> instant(0, 1);
    const int wanted = longTests() ? 100 : 8;
    for (int kills = 0; kills < wanted;) {
        const Folder folder;
        std::filesystem::copy(home.path, folder.path);
        for (bool finished = false; !finished;) {
            const pid_t child = fork();
            if (child == 0) {
                for (const int stream : {1, 2}) dup2(open("/dev/null", O_WRONLY), stream);
                execl(MESHRAKE_PROGRAM, MESHRAKE_PROGRAM, nullptr);
                _exit(127);
            }
            std::this_thread::sleep_for(instant(random) * duration);
            if (kills < wanted) kill(child, SIGKILL);
            int status = 0;
            waitpid(child, &status, 0);
            finished = WIFEXITED(status);
            EXPECT_TRUE(!finished || WEXITSTATUS(status) == 0);
            kills += !finished;
            expectReadable();
        }
        EXPECT_EQ(lastIndex(), 12);
        expectSameContents(readSets(), whole);
        if (HasFailure()) return;
    }
}

// The zone of a time that is there, though not recorded, gives way to the new one.
TEST(Append, ATimeIsThereOnce) {
    const Sets whole = wholeSets(4);
    const Folder folder;
    put("t.plot.control", control());
    putTimes(3);
    ASSERT_EQ(runs::runHere().status, 0);
    putIndex(2);
    putTimes(4);
    ASSERT_EQ(runs::runHere().status, 0);
    const Sets sets = readSets();
    expectSameContents(sets, whole);
    EXPECT_THAT(sets.pm.zones[2].shares, Each(0));
}

TEST(Append, ADataSetThatIsMissingBeginsAnew) {
    const Folder folder;
    put("t.plot.control", control("", "", false));
    putTimes(2);
    ASSERT_EQ(runs::runHere().status, 0);
    std::filesystem::remove("to.pm.szplt");
    put("to.olf.szplt.szhdr", "left over");
    put("t.plot.control", control());
    putTimes(4);
    const Ran ran = runs::runHere();
    ASSERT_EQ(ran.status, 0) << ran.errors;
    const Sets sets = readSets();
    EXPECT_THAT(timesOf(sets.pm), ElementsAre(20, 30));
    EXPECT_THAT(timesOf(sets.olf), ElementsAre(20, 30));
}

// Files of a first run, with one of them changed; the second run must say so and leave all as is.
struct Damaged {
    std::string what, file;
    std::function<void(Bytes&)> change;
    std::string banner{}; // empty: the name of the file
};

void expectRefused(const Problem& first, const Damaged& damage, const std::string& nextControl) {
    SCOPED_TRACE(damage.what);
    const Folder folder;
    write(first);
    Bytes contents = first.at(damage.file);
    damage.change(contents);
    put(damage.file, contents);
    put("t.plot.control", nextControl);
    const Problem before{{"to.pm.szplt", get("to.pm.szplt")},
                         {"to.pm.szplt.szhdr", get("to.pm.szplt.szhdr")},
                         {"to.tec_append", get("to.tec_append")}};
    const Ran ran = runs::runHere();
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.errors, HasSubstr("ERROR, HALTING EXECUTION"));
    EXPECT_THAT(ran.errors, HasSubstr(damage.banner.empty() ? damage.file + "\n" : damage.banner));
    for (const auto& [name, bytes] : before) EXPECT_TRUE(get(name) == bytes) << name;
}

// All files of a first run over two times, with the simulator's for a third.
Problem firstRun() {
    const Folder folder;
    put("t.plot.control", control("", "", false));
    putTimes(2);
    EXPECT_EQ(runs::runHere().status, 0);
    putTimes(3);
    Problem files;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        files[entry.path().filename()] = get(entry.path());
    return files;
}

TEST(Append, DamagedFilesEndTheRun) {
    const Problem first = firstRun();
    const std::string data = "to.pm.szplt", sidecar = data + ".szhdr", index = "to.tec_append";
    const auto flip = [](std::size_t at) { return [at](Bytes& b) { b[at] ^= 8; }; };
    const auto cut = [](std::size_t size) { return [size](Bytes& b) { b.resize(size); }; };
    const auto is = [](const Bytes& contents) { return [contents](Bytes& b) { b = contents; }; };
    const std::size_t dataSize = first.at(data).size(), sidecarSize = first.at(sidecar).size();
    const std::string marker("\x00\x80\x95\x43", 4); // 299.0 in front of a zone
    const std::size_t header = first.at(data).find(marker);
    const std::size_t zoneData = first.at(data).rfind(marker);

    std::vector<Damaged> damages{
        {"an integer missing", index, is("")},
        {"half a length", index, cut(2)},
        {"a length missing", index, cut(8)},
        {"bytes left over", index, [](Bytes& b) { b += "1234"; }},
        {"another length", index, flip(0)},
        {"lengths that differ", index, flip(8)},
        {"a negative index", index, is(integerRecord({-1}))},
        {"no next index", index, is(integerRecord({2147483647}))},
        {"a foreign sidecar", sidecar, is("a text of someone else")},
        {"a foreign data set", data, is(Bytes(dataSize, 'x'))},
    };
    for (std::size_t at = 0; at < sidecarSize; at += 5)
        damages.push_back({"sidecar, byte " + std::to_string(at), sidecar, flip(at)});
    for (const std::size_t size : {std::size_t{0}, std::size_t{23}, sidecarSize - 1})
        damages.push_back({"sidecar of " + std::to_string(size), sidecar, cut(size)});
    for (const std::size_t size : {std::size_t{0}, std::size_t{7}, header, header + 400,
                                   std::size_t{60000}, zoneData + 4, dataSize - 1})
        damages.push_back({"data set of " + std::to_string(size), data, cut(size)});
    for (std::size_t at : {std::size_t{0}, std::size_t{8}, std::size_t{16}, header - 4, zoneData,
                           zoneData + 4, zoneData + 100})
        damages.push_back({"data set, byte " + std::to_string(at), data, flip(at)});
    for (std::size_t at = header; at < header + 1200; at += 20)
        damages.push_back({"headers, byte " + std::to_string(at), data, flip(at)});
    for (const Damaged& damage : damages) expectRefused(first, damage, control("", "", false));
}

TEST(Append, OtherVariablesEndTheRun) {
    const Problem first = firstRun();
    const auto nothing = [](Bytes&) {};
    expectRefused(first, {"fewer variables", "to.pm.szplt", nothing},
                  control("", "no pm saturations\n", false));
    expectRefused(first,
                  {"a set that was closed", "to.pm.szplt",
                   [](Bytes&) { std::filesystem::remove("to.pm.szplt.szhdr"); },
                   "Failed to open file: to.pm.szplt.szhdr\n"},
                  control("", "", false));
}

// Without the wish to append, a data set that was left unfinished is replaced, with a warning.
TEST(Append, AnotherRunReplaces) {
    const Folder folder;
    write(firstRun());
    put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\nend\n");
    const Ran ran = runs::runHere();
    EXPECT_EQ(ran.status, 0);
    EXPECT_THAT(ran.errors, HasSubstr("Tecplot szplt temporary files found (to.pm.szplt.szhdr, "
                                      "etc.)\nConsider deleting them, otherwise data may be "
                                      "appended."));
    EXPECT_THAT(ran.screen, HasSubstr("Closing tecplot file: to.pm\n"));
    EXPECT_THAT(timesOf(data_set_file::read("to.pm.szplt")), ElementsAre(0, 10, 20));
    EXPECT_FALSE(std::filesystem::exists("to.pm.szplt.szhdr"));
}

} // namespace
