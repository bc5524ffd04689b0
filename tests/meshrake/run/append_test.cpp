#include "tests/support/data_set.hpp"
#include "tests/support/faulty_calls.hpp"
#include "tests/support/power_cut.hpp"

// Runs that append to the binary data sets of earlier runs, some of which were interrupted.
namespace {

using namespace sample_files;
using namespace runs;
using data_set_file::DataSet;
using faulty_calls::Fault;
using faulty_calls::kind;
using faulty_calls::Way;
using testing::Each;

const std::string pmSet = "to.pm.szplt", olfSet = "to.olf.szplt", indexFile = "to.tec_append";

void putControl(const std::string& topLevel = "", const std::string& pm = "", bool withOlf = true) {
    put("t.plot.control", "tecplot binary mode\ntecplot binary append\n" + topLevel +
                              "end\nwrite pm domain file\n" + pm + "end\n" +
                              (withOlf ? "write olf domain file\nend\n" : ""));
}

Ran runOver(int times) {
    write(appendedTimes(times));
    Ran ran = runHere();
    EXPECT_EQ(ran.status, 0) << ran.errors;
    return ran;
}

Reals timesOf(const std::string& file) {
    Reals times;
    for (const auto& zone : data_set_file::read(file).zones) times.push_back(zone.time);
    return times;
}

// Returns the contents of both data sets, by name.
Problem contentsHere() {
    Problem contents;
    for (const std::string& file : {pmSet, olfSet})
        contents[file] = data_set::contentsOf(data_set_file::read(file));
    return contents;
}

// Returns the contents after one run with all output times.
Problem wholeContents(int times) {
    const Folder folder;
    putControl();
    runOver(times);
    return contentsHere();
}

TEST(Append, SeveralRunsEqualOneRun) {
    const Problem whole = wholeContents(6);
    for (const std::string interval : {"1", "2", "5"}) {
        const Folder folder;
        putControl("tecplot binary flush interval\n" + interval + "\n");
        for (const auto& [before, times] : {std::pair{0, 2}, {2, 3}, {3, 3}, {3, 6}}) {
            const Ran ran = runOver(times);
            EXPECT_THAT(ran.screen, HasSubstr("\nAppending to Tecplot output\nStarting at time "
                                              "index 000" +
                                              std::to_string(before + 1) + "\n\n"));
            EXPECT_THAT(ran.screen, Not(HasSubstr("Closing tecplot file")));
            EXPECT_EQ(ran.screen.find("No more data to append") != std::string::npos, before > 0);
            EXPECT_EQ(get(indexFile), integerRecord({times}));
            const DataSet set = data_set_file::read(olfSet);
            ASSERT_EQ(set.zones.size(), static_cast<std::size_t>(times));
            if (times == before) continue;
            EXPECT_THAT(set.zones[static_cast<std::size_t>(before)].shares, Each(0));
            EXPECT_EQ(set.zones[static_cast<std::size_t>(before)].connectivityShare, 0);
        }
        EXPECT_TRUE(contentsHere() == whole);
        EXPECT_EQ(data_set_file::read(pmSet).zones[5].connectivityShare, 1);
    }
}

// Several output times may have the same time, next to each other or not. A later run neither drops
// the zones of earlier output times nor writes a zone twice.
TEST(Append, OutputTimesMayHaveTheSameTime) {
    const auto runOverRepeated = [](int times) {
        write(appendedTimes(times));
        const char* const texts[] = {"0.0", "10.0", "10.0", "0.0", "10.0", "20.0"};
        for (int t = 1; t <= times; ++t)
            put("to.head_olf.000" + std::to_string(t),
                resultFile(texts[t - 1], {Reals(6, 0.5 * t)}));
        EXPECT_EQ(runHere().status, 0);
    };
    const Folder home;
    putControl();
    runOverRepeated(6);
    ASSERT_EQ(timesOf(olfSet), (Reals{0, 10, 10, 0, 10, 20}));
    const Problem whole = contentsHere();
    for (int before = 1; before <= 6; ++before)
        for (int recorded = 1; recorded <= before; ++recorded) {
            SCOPED_TRACE(testing::Message() << before << " " << recorded);
            const Folder folder;
            putControl();
            runOverRepeated(before);
            put(indexFile, integerRecord({recorded}));
            runOverRepeated(6);
            EXPECT_TRUE(contentsHere() == whole);
        }
}

// The runs: a first run, one that appends, one that creates one of two data sets, and one that
// replaces zones. After a power cut at any call the next run finds all that was recorded.
TEST(Append, PowerCutAtAnyCall) {
    constexpr int times = 4;
    const Problem whole = wholeContents(times);
    for (const auto& [before, recorded, interval, withOlf] :
         {std::tuple{0, 0, 1, true}, {2, 2, 3, true}, {2, 2, 1, false}, {3, 1, 3, true}}) {
        const Folder folder;
        if (before > 0) {
            putControl("", "", withOlf);
            runOver(before);
            put(indexFile, integerRecord({recorded}));
        }
        putControl("tecplot binary flush interval\n" + std::to_string(interval) + "\n");
        system_calls::table = power_cut::recording(runs::keepingTable());
        runOver(times);
        const std::vector<Problem> states = power_cut::statesLeft(longTests());
        EXPECT_GT(states.size(), 80);
        for (std::size_t i = 0; i < states.size() && !HasFailure(); ++i) {
            SCOPED_TRACE(testing::Message() << "before " << before << ", recorded " << recorded
                                            << ", state " << i << " of " << states.size());
            for (const auto& [name, contents] : power_cut::recordedFiles())
                std::filesystem::remove(name);
            write(states[i]);
            system_calls::table.sync = [](int) { return 0; };
            runOver(times);
            const Problem found = contentsHere();
            EXPECT_TRUE(found.at(pmSet) == whole.at(pmSet));
            EXPECT_TRUE(withOlf ? found == whole : timesOf(olfSet) == Reals({20, 30}));
        }
    }
}

// The data must be on the disk before the sidecar is removed. The next run replaces the unfinished
// data set.
TEST(Append, ARunThatDoesNotAppend) {
    const Folder folder;
    write(appendedTimes(2));
    put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\nend\n");
    system_calls::table.sync = [](int) { return errno = EIO, -1; };
    expectFailure(runHere(), {"HALTING EXECUTION", pmSet});
    EXPECT_TRUE(std::filesystem::exists(pmSet + ".szhdr"));
    EXPECT_THAT(runOver(3).screen, HasSubstr("Closing tecplot file: to.pm\n"));
    EXPECT_EQ(timesOf(pmSet), (Reals{0, 10, 20}));
    EXPECT_FALSE(std::filesystem::exists(pmSet + ".szhdr"));
}

// A first run with two output times. Then the folder is changed. A second run, with two or three
// output times, must end with a banner that names the fault, and must not change the files.
class Refused : public testing::Test {
protected:
    Refused() {
        putControl("", "", false);
        runOver(2);
        for (const std::string& name : {pmSet, sidecar, indexFile}) files[name] = get(name);
        for (const auto& [name, contents] : appendedTimes(3))
            if (name.ends_with(".0003")) thirdTime[name] = contents;
        write(thirdTime);
    }

    void expectRefused(const std::string& banner) {
        Problem before;
        for (const auto& [name, contents] : files) before[name] = get(name);
        expectFailure(faulty_calls::run({"meshrake"}, fault),
                      {"ERROR, HALTING EXECUTION", banner + "\n"});
        for (const auto& [name, contents] : before) EXPECT_TRUE(get(name) == contents) << name;
    }

    // Also runs without a new output time.
    void expectRefusedWithAnyTimes(const std::string& banner) {
        for (const auto& [name, contents] : thirdTime) std::filesystem::remove(name);
        expectRefused(banner);
        write(thirdTime);
        expectRefused(banner);
    }

    void expectRefusedWith(const std::string& name, const Bytes& contents) {
        write(files);
        put(name, contents);
        const std::string damaged = "\nThe file is damaged: no zone can be appended to ";
        expectRefusedWithAnyTimes(name == sidecar ? name + damaged + "its data set."
                                  : name == pmSet ? name + damaged + "it."
                                                  : name);
    }

    // Cuts the file, and changes a bit of one byte, at each `step` bytes from `first` to `last`.
    void expectRefusedChanged(const std::string& name, std::size_t first, std::size_t last,
                              std::size_t step) {
        for (std::size_t at = first; at < last; at += step) {
            SCOPED_TRACE(testing::Message() << "byte " << at);
            Bytes contents = files[name];
            contents[at] ^= 8;
            expectRefusedWith(name, contents);
            expectRefusedWith(name, files[name].substr(0, at));
        }
    }

    const std::string sidecar = pmSet + ".szhdr";
    const Folder folder;
    Problem files, thirdTime;
    Fault fault; // of the second run
};

TEST_F(Refused, DamagedFiles) {
    const std::string marker("\x00\x80\x95\x43", 4); // 299.0 before a zone
    const std::size_t header = files[pmSet].find(marker), data = files[pmSet].rfind(marker);
    const std::size_t size = files[pmSet].size(), sidecarSize = files[sidecar].size();
    for (const std::int32_t index : {-1, 2147483647})
        expectRefusedWith(indexFile, integerRecord({index}));
    expectRefusedWith(indexFile, files[indexFile] + "1234");
    expectRefusedWith(sidecar, "another text");
    expectRefusedWith(pmSet, Bytes(size, 'x'));
    for (const std::size_t cut : {header, std::size_t{60000}, data, data + 4, size - 1})
        expectRefusedWith(pmSet, files[pmSet].substr(0, cut));
    expectRefusedChanged(indexFile, 0, 9, 8);
    expectRefusedChanged(sidecar, 0, sidecarSize, 5);
    expectRefusedChanged(pmSet, 0, 24, 8);
    expectRefusedChanged(pmSet, header - 4, header + 1200, 20);
    expectRefusedChanged(pmSet, data, size, 7);
}

// A sidecar that cannot be opened or read is not reported as damaged.
TEST_F(Refused, ASidecarThatCannotBeRead) {
    for (const auto& [call, error, detail] :
         {std::tuple{"open", EACCES, "Permission to access file denied\nError number: 9"},
          {"open", EIO, "Unknown error encountered opening file\nError number: 30"},
          {"pread", EIO, "Error encountered during read statement\nError number: 39"}}) {
        fault = {.way = Way::lasting, .kind = kind(call), .error = error, .only = ".szhdr"};
        expectRefused(std::string("Failed to open file: to.pm.szplt.szhdr\nError detail: ") +
                      detail);
    }
}

// A run that does not append replaced the data set and was interrupted before or after its first
// zone.
TEST_F(Refused, ADataSetOfARunWithoutAppend) {
    const Bytes control = get("t.plot.control");
    for (const bool before : {true, false}) {
        write(files);
        write(thirdTime);
        put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\nend\n");
        Fault ending{.way = Way::once,
                     .kind = kind(before ? "rename" : "fdatasync"),
                     .error = EIO,
                     .only = pmSet + (before ? ".unfinished" : "")};
        EXPECT_EQ(faulty_calls::run({"meshrake"}, ending).status, 1);
        put("t.plot.control", control);
        EXPECT_EQ(get(pmSet) == files[pmSet], before);
        expectRefusedWithAnyTimes(
            before ? sidecar + "\nThe file is damaged: no zone can be appended to its data set."
                   : sidecar + "\nThe data set was left unfinished by a run without the option to "
                               "append: no zone can be appended to it.");
    }
}

TEST_F(Refused, OtherVariablesOtherMeshesAndMissingFiles) {
    putControl("", "no pm saturations\n", false);
    expectRefused("to.pm.szplt\nThe data set has other variables than this run.");
    putControl("", "truncate pm domain\n0 1\n0 1\n0 10\n", false);
    expectRefused("Create new zone in pm domain.\n"
                  "Its plot file has zones with other nodes or elements: to.pm.szplt");
    putControl("", "", false);
    files.erase(sidecar);
    std::filesystem::remove(sidecar);
    expectRefused("Failed to open file: to.pm.szplt.szhdr");
    std::filesystem::create_directory(sidecar);
    expectRefused("Failed to open file: to.pm.szplt.szhdr");
    std::filesystem::remove(sidecar);
    std::filesystem::remove(indexFile);
    std::filesystem::create_directory(indexFile);
    expectRefused("Failed to open file: to.tec_append\nError detail: Unknown error encountered "
                  "opening file\nError number: 30");
}

} // namespace
