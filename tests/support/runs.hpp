#pragma once

#include "meshrake/model/domain.hpp"
#include "tests/support/sample_files.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

// Runs of the program and of parts of it.
namespace runs {

// The system's calls, but that what goes to the screen and to the standard error stream is kept.
system_calls::Table keepingTable();

struct Ran {
    int status;
    std::string screen, errors;
};

// One run inside this process, and one of the program itself with `input` as standard input;
// `shell` is put in front of the program.
Ran runHere(const std::vector<std::string>& arguments = {});
Ran runProgram(const std::string& arguments = "", const std::string& input = "",
               const std::string& shell = "exec");

// Status of a call that writes to both streams, and what it wrote.
Ran keepStreams(const std::function<int()>& call);

// True with the environment variable MESHRAKE_LONG_TESTS: all errors of a call, more random states.
bool longTests();

// The kind and the message of the last banner that ends a run, "INPUT: ...": of what has gone to
// the standard error stream, or of a call that may end the run. Empty without one.
std::string endingOf(const std::string& errors);
std::string endingOf(const std::function<void()>& call);

// Expects the call to end the run with a banner of this kind, "FATAL" or "INPUT", whose message
// begins with `message`.
void expectEnd(const std::string& kind, const std::string& message,
               const std::function<void()>& call);

// Expects status 1 and all of these words on the standard error stream.
void expectFailure(const Ran& ran, const std::vector<std::string>& words);

// Numbers from 1 of the entries that are set.
sample_files::Integers numbersOf(const std::vector<std::uint8_t>& mask);

// For tests of whole runs inside this process: a folder, and the problem that a run finds there.
class ProblemRun : public testing::Test {
protected:
    // A run over the problem, which takes up the control text; an empty one leaves it as it is.
    Ran run(const std::string& control = "", const std::vector<std::string>& arguments = {});

    sample_files::Folder folder;
    sample_files::Problem problem;
};

// For tests of parts of a run: an empty folder, the prefix "t", an open echo file "echo". What goes
// to the screen is kept.
class PartOfRun : public testing::Test {
protected:
    PartOfRun();
    ~PartOfRun() override;

    // What has gone to screen and echo file since the last call.
    std::string takeScreen();
    std::string takeEcho();

    // The domain of the files in the folder; pm must be created first and stay where it is.
    static void create(model::Domain& domain, const std::string& tag, const model::Domain& pm);

    sample_files::Folder folder;

private:
    std::size_t echoTaken = 0;
};

} // namespace runs
