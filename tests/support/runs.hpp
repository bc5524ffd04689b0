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

using testing::HasSubstr;
using testing::Not;

// Returns the system's calls, with a `write` that keeps the text for standard output and standard
// error instead of writing it.
system_calls::Table keepingTable();

struct Ran {
    int status;
    std::string screen, errors;
};

// Do a run inside this process, and a run of the program with `input` as standard input. `shell` is
// the text of the command before the program. The run inside this process makes the calls of the
// table of system calls, which is then that of the system again.
Ran runHere(const std::vector<std::string>& arguments = {});
Ran runProgram(const std::string& arguments = "", const std::string& input = "",
               const std::string& shell = "exec");

// Returns the status of a call and the texts that it wrote to both streams.
Ran keepStreams(const std::function<int()>& call);

// True if the environment variable MESHRAKE_LONG_TESTS exists: tests then use all errors of a call
// and more random states.
bool longTests();

// Return the kind and the message of the last banner that ends a run, as "INPUT: ...", from the
// text of the standard error stream or from a call that may end the run. Empty without such a
// banner.
std::string endingOf(const std::string& errors);
std::string endingOf(const std::function<void()>& call);

// Expects the call to end the run with a banner of this kind, "FATAL" or "INPUT", whose message
// begins with `message`.
void expectEnd(const std::string& kind, const std::string& message,
               const std::function<void()>& call);

// Expects status 1 and all of these words on the standard error stream.
void expectFailure(const Ran& ran, const std::vector<std::string>& words);

// For tests with files: an empty folder. At the end all files are closed, and all modules and the
// table of system calls have the state of a program start.
class Files : public testing::Test {
protected:
    ~Files() override;

    sample_files::Folder folder;
};

// For tests of whole runs inside this process: an empty folder, and the problem of a run.
class ProblemRun : public Files {
protected:
    // Writes the problem and does a run. A control text that is not empty is added to the problem.
    Ran run(const std::string& control = "", const std::vector<std::string>& arguments = {});

    sample_files::Problem problem;
};

// For tests of parts of a run: an empty folder, the prefix "t", and an open echo file "echo". The
// text of the screen is kept.
class PartOfRun : public Files {
protected:
    PartOfRun();

    // Return the text of screen and echo file since the last call.
    std::string takeScreen();
    std::string takeEcho();

    // Creates a domain from the files in the folder. pm must be created first and must not be
    // moved.
    static void create(model::Domain& domain, const std::string& tag, const model::Domain& pm);

private:
    std::size_t echoTaken = 0;
};

} // namespace runs
