#include "companion/data_set/data_set_file.hpp"
#include "tests/support/data_set.hpp"
#include "tests/support/faulty_calls.hpp"

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

// Runs in which a system call fails, is interrupted, or reads or writes less, or in which the
// process is killed at a call. Such a run must end with a banner or write all its files. The next
// run must give the same files as a run without a fault.
namespace {

using namespace sample_files;
using namespace runs;
using faulty_calls::echoFile;
using faulty_calls::Effect;
using faulty_calls::Fault;
using faulty_calls::Kind;
using faulty_calls::kinds;
using faulty_calls::Way;

// A problem with all comparisons and plots, whose points are located in elements.
Problem withProducts(const std::string& mode) {
    const std::string everywhere = "-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n";
    Problem problem = brickProblem({3, 1, 1, 1});
    addDual(problem, 16);
    problem["t.observed_heads"] = "2\n.5 .5 .5 1\n9 9 9 1\n";
    problem["t.observed_heads_olf"] = problem["t.observed_d2gwt"] = "1\n.1 .1 2\n";
    problem["t.plot.control"] =
        mode + "end\nwrite pm domain file\ncompare heads 3d domain\n" + everywhere +
        "compare gw table elevation\ncompare depth to gw table\nend\n" +
        "write dual domain file\nend\nwrite olf domain file\ncompare surface water depth\n" +
        everywhere + "end\nplot pm zone isopach structure\nplot pm depth below ground surface\n";
    return problem;
}

Problem appendedTo(int times, bool withOlf = true) {
    Problem problem = appendedTimes(times);
    problem["t.plot.control"] =
        std::string("tecplot binary mode\ntecplot binary append\ntecplot binary flush interval\n") +
        "3\nend\nwrite pm domain file\nend\n" + (withOlf ? "write olf domain file\nend\n" : "");
    return problem;
}

struct Scenario {
    const char* name;
    bool append;
    std::function<void()> prepare;
    std::vector<const char*> arguments{"meshrake"};
};

// Writes data sets of `before` output times, and `recorded` as the index of the last finished one.
// If they differ, the auxiliary records become longer, so that the data set is copied.
void prepareAppend(int before, int recorded, bool withOlf) {
    if (before > 0) {
        write(appendedTo(before, withOlf));
        Fault none;
        EXPECT_EQ(faulty_calls::run({"meshrake"}, none).status, 0);
        put("to.tec_append", integerRecord({recorded}));
        if (!withOlf) put("to.olf.szplt.szhdr", "of an earlier run");
    }
    Problem problem = appendedTo(4);
    if (recorded < before) patch(problem["to.gen"], 3, 0, 1); // minutes instead of seconds
    write(problem);
}

const Scenario scenarios[] = {
    {"Text", false, [] { write(twoTimes()); }},
    {"Products", false, [] { write(withProducts("")); }},
    {"Binary", false, [] { write(withProducts("tecplot binary mode\n")); }},
    {"Template", false,
     [] {
         Problem problem = twoTimes();
         problem.erase("t.plot.control");
         write(problem);
     }},
    {"TemplateAlone", false, [] { write(twoTimes()); }, {"meshrake", "--make_plot_control"}},
    {"Prompt", false,
     [] {
         write(twoTimes());
         put("batch.pfx", "another\n");
     }},
    {"Append", true, [] { prepareAppend(0, 0, true); }},
    {"Resume", true, [] { prepareAppend(2, 2, true); }},
    {"ResumeWithoutNewTimes", true, [] { prepareAppend(4, 4, true); }},
    {"ResumeWithAnotherDataSet", true, [] { prepareAppend(2, 2, false); }},
    {"ResumeReplacingZones", true, [] { prepareAppend(3, 1, true); }}};

Bytes withoutWarnings(Bytes echo) {
    const std::string stars(33, '*'), begin = "\n" + stars + "\n***      WARNING MESSAGE";
    for (std::size_t at = 0; (at = echo.find(begin, at)) != Bytes::npos;)
        echo.erase(at, echo.find("\n\n", echo.find("\n\n", at) + 2) + 2 - at);
    return echo;
}

// Returns the files of the folder by name, without dates and warnings. Data sets of runs that
// append are compared by their contents, independent of which zones share them.
Problem folderContents(const Scenario& scenario) {
    Problem files;
    for (const std::string& name : filesHere()) {
        const bool dataSet = name.ends_with(".szplt");
        if (scenario.append && dataSet)
            files[name] = data_set::contentsOf(data_set_file::read(name));
        else if (!scenario.append || !(name.ends_with(".szhdr") || name == echoFile))
            files[name] = name == echoFile ? withoutWarnings(get(name)) : getDated(name);
    }
    return files;
}

// Returns the names of the files that differ, for messages.
std::string differences(const Problem& some, const Problem& others) {
    std::string names;
    for (const auto& [name, contents] : some)
        if (!others.contains(name) || others.at(name) != contents) names += name + " ";
    for (const auto& [name, contents] : others)
        if (!some.contains(name)) names += "no " + name + " ";
    return names;
}

// Returns the file of which this file is a copy, or which it will replace, or the file itself.
std::string originalOf(const std::string& file) {
    std::string name = file == "scratch_plot" ? "t.plot.control" : file;
    const std::string_view ending = ".unfinished";
    if (name.ends_with(ending)) name.resize(name.size() - ending.size());
    return name;
}

// Matches a banner that names this file, and not a file whose name only begins with this name. A
// sync of the folder is part of writing some file in it.
testing::Matcher<std::string> names(const std::string& file) {
    if (file == ".") return HasSubstr("to.");
    return testing::AnyOf(HasSubstr(file + "\n"), HasSubstr(file + " file\n"));
}

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

class EveryCall : public testing::TestWithParam<Scenario> {
protected:
    EveryCall() {
        scenario.prepare();
        for (const std::string& name : filesHere()) given[name] = get(name);
        const Folder folder;
        write(given);
        for (Problem& files : clean) {
            EXPECT_EQ(run().status, 0);
            files = folderContents(scenario);
        }
    }

    Ran run(const Fault& with = {}) {
        fault = with;
        return faulty_calls::run(scenario.arguments, fault);
    }

    // Expects a banner of the run, or all its files, except one that the screen reports as missing.
    void expectBannerOrAllFiles(const Ran& ran) {
        const std::string named = originalOf(fault.path);
        if (ran.status == 0) {
            Problem files = folderContents(scenario);
            const bool warned = ran.screen.find("Failed to generate " + named) != Bytes::npos ||
                                ran.screen.find("Failed to open file " + named) != Bytes::npos;
            if (warned) files[named] = clean[0][named];
            EXPECT_EQ(differences(files, clean[0]), "");
            return;
        }
        EXPECT_EQ(ran.status, 1);
        // A file that a later run reads is replaced as a whole. An index is written at each time.
        for (const std::string name :
             {"t.plot.control", "batch.pfx", "to.tec_append", "to.ObsShape.txt"})
            if (std::filesystem::exists(name)) {
                const Bytes left = get(name), whole = clean[0].at(name);
                const bool index = name == "to.tec_append" && left.size() == whole.size();
                EXPECT_TRUE(index || left == whole ||
                            (given.contains(name) && left == given.at(name)));
            }
        const std::string banner = ran.errors.substr(
            std::min(ran.errors.find(" ERROR, HALTING EXECUTION"), ran.errors.size()));
        EXPECT_THAT(banner, testing::AnyOf(names(named), names(fault.path)));
        EXPECT_NE(banner, "");
        const bool canEcho = fault.path != echoFile && fault.way != Way::lasting;
        EXPECT_TRUE(!fault.echoBegun || !canEcho || get(echoFile).ends_with(banner)) << banner;
    }

    // Expects the files of a run without a fault from a second run.
    void expectRecovery() {
        for (const std::string name : {"to.pm.szplt", "to.olf.szplt"})
            if (std::filesystem::exists(name)) {
                EXPECT_NO_THROW(data_set_file::read(name)) << name;
            }
        const Ran ran = run();
        EXPECT_EQ(ran.status, 0) << ran.errors;
        const Problem files = folderContents(scenario);
        if (files != clean[1]) {
            EXPECT_EQ(differences(files, clean[0]), "");
        }
    }

    // Lets each call of this kind fail in turn and returns the number of these calls.
    int failEach(Way way, const Kind& kind, int error, int step = 1) {
        int met = 0;
        for (int number = 1;; number += step, ++met) {
            const Folder folder;
            write(given);
            const Ran ran = run({way, &kind, error, number});
            if (!fault.met) return met;
            SCOPED_TRACE(testing::Message() << kind.name << " number " << number << " of "
                                            << fault.path << ": " << strerror(error));
            expectBannerOrAllFiles(ran);
            expectRecovery();
        }
    }

    const Scenario& scenario = GetParam();
    const Folder home;
    Problem given;    // the files before the run
    Problem clean[2]; // the files after one run without a fault, and after two
    Fault fault;
};

TEST_P(EveryCall, Fails) {
    int met = 0;
    for (const Kind& kind : kinds()) {
        const std::size_t errors = longTests() ? kind.errors.size() : 1;
        for (const int error : std::span(kind.errors).first(errors))
            if (error != ENOMEM) met += failEach(Way::once, kind, error);
        if (kind.effect == Effect::growth) met += failEach(Way::lasting, kind, ENOSPC);
    }
    EXPECT_GT(met, 60);
}

TEST_P(EveryCall, FailsToAllocate) {
    for (const Way way : {Way::once, Way::lasting})
        EXPECT_GT(failEach(way, kinds().back(), ENOMEM, longTests() ? 1 : 31), 10);
}

TEST_P(EveryCall, IsTheLastBeforeAKill) {
    for (int number = 1;; ++number) {
        SCOPED_TRACE(testing::Message() << "killed at call " << number);
        const Folder folder;
        write(given);
        const pid_t child = fork();
        if (child == 0) {
            run({.way = Way::kill, .countdown = number});
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        if (status != 0) {
            EXPECT_GT(number, 2);
            return;
        }
        expectRecovery();
    }
}

TEST_P(EveryCall, IsInterruptedOrShortened) {
    for (const std::size_t bytes : {0U, 1U, 7U, 4095U}) {
        SCOPED_TRACE(bytes);
        const Folder folder;
        write(given);
        EXPECT_EQ(
            run({.way = bytes > 0 ? Way::shorten : Way::interrupt, .maximumBytes = bytes}).status,
            0);
        EXPECT_EQ(differences(folderContents(scenario), clean[0]), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryCall, testing::ValuesIn(scenarios),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
