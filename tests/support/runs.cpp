#include "tests/support/runs.hpp"

#include "meshrake/meshrake.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/run/reset.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace runs {

namespace {

// Makes the standard input empty, so that a run that asks for a prefix does not wait.
int redirectInputFromNothing() {
    return dup2(open("/dev/null", O_RDONLY), 0);
}

std::string kept[3]; // text written to standard output and standard error, by descriptor

std::ptrdiff_t keep(int descriptor, const void* from, std::size_t size) {
    if (descriptor != 1 && descriptor != 2)
        return system_calls::systemTable().write(descriptor, from, size);
    kept[descriptor].append(static_cast<const char*>(from), size);
    return static_cast<std::ptrdiff_t>(size);
}

// Keeps the text of both streams until the end of the scope, unless a test has its own `write`.
struct Keeping {
    Keeping() {
        for (std::string& text : kept) text.clear();
        if (before.write == system_calls::systemTable().write) system_calls::table.write = keep;
    }
    ~Keeping() { system_calls::table = before; }
    Keeping(const Keeping&) = delete;
    Keeping& operator=(const Keeping&) = delete;
    const system_calls::Table before = system_calls::table;
};

void resetModules() {
    system_calls::table = system_calls::systemTable();
    run::resetAll();
}

} // namespace

system_calls::Table keepingTable() {
    system_calls::Table table = system_calls::systemTable();
    table.write = keep;
    return table;
}

Ran runHere(const std::vector<std::string>& arguments) {
    static const int input = redirectInputFromNothing();
    EXPECT_EQ(input, 0);
    std::vector<const char*> argv{"meshrake"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    Ran ran =
        keepStreams([&] { return meshrake_main(static_cast<int>(argv.size()), argv.data()); });
    system_calls::table = system_calls::systemTable();
    return ran;
}

Ran keepStreams(const std::function<int()>& call) {
    const Keeping keeping;
    const int status = call();
    return {status, kept[1], kept[2]};
}

Ran runProgram(const std::string& arguments, const std::string& input, const std::string& shell) {
    sample_files::put(".input", input);
    const std::string command =
        shell + " " MESHRAKE_PROGRAM " <.input >.screen 2>.errors " + arguments;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
            sample_files::get(".screen"), sample_files::get(".errors")};
}

bool longTests() {
    return std::getenv("MESHRAKE_LONG_TESTS") != nullptr;
}

std::string endingOf(const std::string& errors) {
    const std::size_t at = errors.rfind(" ERROR, HALTING EXECUTION");
    if (at == std::string::npos) return "";
    const std::size_t kind = errors.rfind(' ', at - 1) + 1, text = errors.find("**\n\n", at) + 4;
    return errors.substr(kind, at - kind) + ": " + errors.substr(text, errors.size() - text - 2);
}

std::string endingOf(const std::function<void()>& call) {
    const Keeping keeping;
    try {
        call();
    } catch (const error::RunEnded&) {
        EXPECT_NE(kept[2], "");
    }
    return endingOf(kept[2]);
}

void expectEnd(const std::string& kind, const std::string& message,
               const std::function<void()>& call) {
    EXPECT_THAT(endingOf(call) + "\n\n", testing::StartsWith(kind + ": " + message));
}

void expectFailure(const Ran& ran, const std::vector<std::string>& words) {
    EXPECT_EQ(ran.status, 1);
    for (const std::string& word : words) EXPECT_THAT(ran.errors, HasSubstr(word));
}

Files::~Files() {
    resetModules();
}

Ran ProblemRun::run(const std::string& control, const std::vector<std::string>& arguments) {
    if (!control.empty()) problem["t.plot.control"] = control;
    sample_files::write(problem);
    return runHere(arguments);
}

PartOfRun::PartOfRun() {
    resetModules();
    model::run.problemPrefix = "t";
    model::run.echoUnit = file_units::openTextReplace("echo", io_layer::Flush::everyLine);
    kept[1].clear();
    system_calls::table = keepingTable();
}

std::string PartOfRun::takeScreen() {
    return std::exchange(kept[1], "");
}

std::string PartOfRun::takeEcho() {
    const std::string text = sample_files::get("echo").substr(echoTaken);
    echoTaken += text.size();
    return text;
}

void PartOfRun::create(model::Domain& domain, const std::string& tag, const model::Domain& pm) {
    model::domainCreate(domain, tag, pm);
    if (tag == "pm") domain.couplingScheme = 1;
}

} // namespace runs
