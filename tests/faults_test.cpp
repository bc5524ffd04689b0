#include "meshrake/meshrake.hpp"
#include "tests/runs.hpp"
#include "tvncommon/system_calls.hpp"

#include <cerrno>
#include <sys/stat.h>
#include <utility>

// Runs in which the system refuses something. They must end with status 1 and a banner that names
// the file, or go on where the run can do without; they must never end in silence.
namespace {

using namespace sample_files;
using runs::Ran;
using testing::HasSubstr;

enum class Call { open, facts, read, write, seek, close };
constexpr const char* callNames[] = {"open", "facts", "read", "write", "seek", "close"};

// The call of this kind that fails next, counted down, and the file that it was for.
struct Fault {
    Call kind = Call::open;
    int countdown = 0;
    std::string path; // of the call that has failed
    bool writing = false;
    std::map<int, std::pair<std::string, bool>> files; // by descriptor: name, open for writing
};
Fault fault;

bool fails(Call kind, int descriptor) {
    if (kind != fault.kind || --fault.countdown != 0) return false;
    const auto& [path, writing] = fault.files[descriptor];
    fault.path = path;
    fault.writing = writing;
    errno = EIO;
    return true;
}

system_calls::Table faultyTable() {
    using namespace system_calls;
    static const Table real = runs::keepingTable();
    Table faulty = real;
    faulty.open = [](const char* path, OpenMode mode) {
        fault.files[-1] = {path, mode != OpenMode::read};
        if (fails(Call::open, -1)) return -1;
        const int descriptor = real.open(path, mode);
        fault.files[descriptor] = {path, mode != OpenMode::read};
        return descriptor;
    };
    faulty.facts = [](int d, FileFacts& facts) {
        return fails(Call::facts, d) ? -1 : real.facts(d, facts);
    };
    faulty.read = [](int d, void* into, std::size_t size) {
        if (fails(Call::read, d)) return std::ptrdiff_t{-1};
        if (d != 0) return real.read(d, into, size);
        const std::string answer = "t\n"; // to the prompt
        return static_cast<std::ptrdiff_t>(answer.copy(static_cast<char*>(into), size));
    };
    faulty.write = [](int d, const void* from, std::size_t size) {
        return fails(Call::write, d) ? -1 : real.write(d, from, size);
    };
    faulty.seek = [](int d, std::int64_t to) {
        return fails(Call::seek, d) ? -1 : real.seek(d, to);
    };
    faulty.close = [](int d) {
        const int status = real.close(d);
        return fails(Call::close, d) ? -1 : status;
    };
    return faulty;
}

// What a run that meets the fault must say; empty where it goes on.
std::string expectedWords() {
    const bool optional = fault.path == "batch.pfx" && !fault.writing; // asks for the prefix
    switch (fault.kind) {
    case Call::open:
    case Call::facts:
        return optional ? "" : "Failed to open file: " + fault.path;
    case Call::read:
        if (optional) return "";
        return fault.path == "scratch_plot" ? "Error reading t.plot.control file" : fault.path;
    case Call::write:
        return fault.path == "standard error" ? "" : "Error writing file: " + fault.path;
    case Call::seek:
        return (fault.writing ? "Error writing file: " : "Error reading file: ") + fault.path;
    case Call::close:
        return fault.writing ? "Error writing file: " + fault.path : "";
    }
    return "";
}

Problem twoTimes() {
    Problem problem = brickProblem({1, 1, 1, 2});
    problem["t.plot.control"] =
        "tecplot mode\nend\nwrite pm domain file\ninclude more\nend\nwrite olf domain file\n";
    problem["more"] = "truncate pm domain\n0 1\n0 1\n0 1\n";
    problem["to.sat_pm.0001"] =
        resultFile("0.0", {std::vector<float>(12, 0.5F)}); // longer than is asked for
    return problem;
}

TEST(Faults, EveryCallOfEveryKind) {
    for (const Call kind :
         {Call::open, Call::facts, Call::read, Call::write, Call::seek, Call::close}) {
        int met = 0;
        for (int number = 1;; ++number) {
            const Folder folder;
            write(twoTimes());
            fault = {kind, number, "", false, {}};
            fault.files[0].first = "standard input";
            fault.files[1] = {"standard output", true};
            fault.files[2] = {"standard error", true};
            system_calls::table = faultyTable();
            const Ran ran = runs::runHere();
            system_calls::table = system_calls::systemTable();
            if (fault.countdown > 0) break;
            ++met;
            SCOPED_TRACE(std::string(callNames[static_cast<int>(kind)]) + " number " +
                         std::to_string(number) + " of " + fault.path);
            const std::string words = expectedWords();
            EXPECT_EQ(ran.status, words.empty() ? 0 : 1);
            EXPECT_THAT(ran.errors, HasSubstr(words));
            const bool echoed =
                std::filesystem::exists("to.meshrake.eco") && fault.path != "to.meshrake.eco";
            if (echoed && !get("to.meshrake.eco").empty()) {
                EXPECT_THAT(get("to.meshrake.eco"), HasSubstr(words));
            }
        }
        EXPECT_GT(met, kind == Call::seek ? 3 : 15);
    }
}

class FullDisk : public testing::Test {
protected:
    FullDisk() { write(twoTimes()); }

    static void expectFailure(const Ran& ran, const std::string& words) {
        runs::expectFailure(ran, {"HALTING EXECUTION ***\n", words});
    }

    Folder folder;
};

TEST_F(FullDisk, AnyFileThatIsWritten) {
    for (const std::string name : {"to.meshrake.eco", "scratch_plot", "to.pm.dat"}) {
        std::filesystem::create_symlink("/dev/full", name);
        expectFailure(runs::runProgram(), "\nError writing file: " + name + "\n");
        std::filesystem::remove(name);
    }
}

TEST_F(FullDisk, TheScreen) {
    for (const char* to : {">/dev/full", ">&-"})
        expectFailure(runs::runProgram(to), "\nError writing file: standard output\n");
    // A reader that has gone away.
    const std::string ending = ">&3; echo $? >.status) 3>&1 | true";
    const Ran ran = runs::runProgram(ending, "", "(sleep 0.2;");
    expectFailure({std::stoi(get(".status")), "", ran.errors},
                  "\nError writing file: standard output\n");
    EXPECT_EQ(runs::runProgram("<&-").status, 0);
    EXPECT_EQ(runs::runProgram("2>&-").status, 0);
    EXPECT_EQ(runs::runProgram("2>/dev/full").status, 0);
}

TEST_F(FullDisk, ALimitOnTheSizeOfFiles) {
    for (const char* name : {"to.sat_pm.0001", "t.plot.control"}) std::filesystem::remove(name);
    write(brickProblem({40, 40, 2, 1}));
    // 64 KiB: the mesh of pm alone is more than that as text.
    const Ran ran = runs::runProgram("", "", "ulimit -f 128; exec");
    expectFailure(ran, "\nError writing file: to.pm.dat\n");
    EXPECT_EQ(std::filesystem::file_size("to.pm.dat"), 65536U); // what fitted stays
}

// Something else in the place of a file that must be there.
TEST(StrangeFiles, InThePlaceOfInput) {
    const std::string names = "to.gen to.species to.hmc to.coordinates_pm to.elements_pm "
                              "to.coordinates_olf to.elements_olf to.head_pm.0001 to.head_olf.0001 "
                              "to.sat_pm.0001 to.tv_zone_olf.0002 t.plot.control";
    const std::map<std::string, std::function<void(const std::string&)>> kinds = {
        {"folder", [](const std::string& name) { std::filesystem::create_directory(name); }},
        {"pipe", [](const std::string& name) { mkfifo(name.c_str(), 0600); }},
        {"empty file", [](const std::string& name) { put(name, ""); }},
        {"endless file",
         [](const std::string& name) { std::filesystem::create_symlink("/dev/zero", name); }},
        {"link to nothing",
         [](const std::string& name) { std::filesystem::create_symlink("nowhere", name); }}};
    for (const auto& [kind, place] : kinds) {
        std::istringstream list(names);
        for (std::string name; list >> name;) {
            const bool mustBe = name == "to.gen" || name.starts_with("to.elements");
            const bool anyText = name == "t.plot.control" && kind == "empty file";
            if ((kind == "link to nothing" && !mustBe) || anyText) continue;
            const Folder folder;
            write(twoTimes());
            std::filesystem::remove(name);
            place(name);
            const Ran ran = runs::runProgram("", "", "exec timeout 20");
            EXPECT_EQ(ran.status, 1) << kind << " " << name;
            EXPECT_THAT(ran.errors, HasSubstr(name)) << kind;
        }
    }
}

// A pipe that nobody reads from must not keep the run waiting.
TEST(StrangeFiles, InThePlaceOfOutput) {
    for (const std::string name : {"to.meshrake.eco", "scratch_plot", "to.pm.dat", "to.olf.dat"})
        for (const bool pipe : {false, true}) {
            const Folder folder;
            write(twoTimes());
            ASSERT_EQ(pipe ? mkfifo(name.c_str(), 0600) : mkdir(name.c_str(), 0700), 0);
            const Ran ran = runs::runProgram("", "", "exec timeout 3");
            EXPECT_EQ(ran.status, 1) << name;
            EXPECT_THAT(ran.errors, HasSubstr("\nFailed to open file: " + name + "\n"));
            EXPECT_THAT(ran.errors, HasSubstr(pipe ? "" : "opening file\nError number: 30\n"));
        }
}

TEST(StrangeFiles, WhatTheRunCanDoWithout) {
    const Folder folder;
    write(twoTimes());
    std::filesystem::remove("t.skiv");
    std::filesystem::create_directory("t.skiv"); // a folder is there as well as a file
    std::filesystem::remove("batch.pfx");
    std::filesystem::create_symlink("/dev/zero", "batch.pfx");
    EXPECT_EQ(runs::runProgram("", "t\n").status, 0);
    std::filesystem::remove("batch.pfx");
    std::filesystem::create_directory("batch.pfx");
    const Ran ran = runs::runProgram("", "t\n");
    EXPECT_EQ(ran.status, 0);
    EXPECT_THAT(ran.screen,
                HasSubstr("\nError opening batch.pfx file\nError reading batch.pfx file\n"));
    EXPECT_THAT(ran.screen, HasSubstr("\nFailed to generate batch.pfx file with prefix t\n"));
}

// Memory that runs out: the n-th allocation of a run fails, alone or with all that follow.
struct Shortage {
    int countdown = 0;
    bool lasting = false;
    bool counting = false; // not while the test itself takes memory
};
Shortage shortage;

TEST(Memory, AnyAllocationMayFail) {
    static std::string banner;
    system_calls::Table table = system_calls::systemTable();
    table.allocate = [](std::size_t size) {
        const bool fails = shortage.counting && (--shortage.countdown == 0 ||
                                                 (shortage.countdown < 0 && shortage.lasting));
        return fails ? nullptr : system_calls::systemTable().allocate(size);
    };
    table.write = [](int d, const void* from, std::size_t size) {
        const bool counting = std::exchange(shortage.counting, false);
        if (d == 2) banner.append(static_cast<const char*>(from), size);
        const bool kept = d == 1 || d == 2;
        const std::ptrdiff_t n = kept ? static_cast<std::ptrdiff_t>(size)
                                      : system_calls::systemTable().write(d, from, size);
        shortage.counting = counting;
        return n;
    };
    for (const bool lasting : {false, true})
        for (int number = 1;; number += 1 + number / 40) {
            const Folder folder;
            write(twoTimes());
            banner.clear();
            system_calls::table = table;
            shortage = {number, lasting, true};
            const int status = meshrake_main(0, nullptr);
            shortage.counting = false;
            system_calls::table = system_calls::systemTable();
            if (shortage.countdown > 0) break;
            SCOPED_TRACE(testing::Message() << number << (lasting ? " and all later ones" : ""));
            EXPECT_EQ(status, 1);
            EXPECT_THAT(banner, HasSubstr("ALLOCATION ERROR, HALTING EXECUTION"));
        }
}

#ifndef __SANITIZE_ADDRESS__
// From a limit at which the program can be loaded, to one that suffices for a small run.
TEST(Memory, LimitsOfTheSystem) {
    const Folder folder;
    write(twoTimes());
    int failed = 0, finished = 0;
    for (int limit = 5000; limit < 14000; limit += 50) {
        const Ran ran = runs::runProgram("", "", "ulimit -v " + std::to_string(limit) + "; exec");
        if (ran.status == 127 && failed + finished == 0) continue; // not loaded
        ran.status == 0 ? ++finished : ++failed;
        if (ran.status == 0) continue;
        EXPECT_EQ(ran.status, 1) << limit;
        EXPECT_THAT(ran.errors, HasSubstr("ALLOCATION ERROR, HALTING EXECUTION")) << limit;
    }
    EXPECT_GT(failed, 0);
    EXPECT_GT(finished, 0);
}
#endif

} // namespace
