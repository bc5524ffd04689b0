#include "companion/meshrake_tool.hpp"

#include "companion/commands/commands.hpp"
#include "companion/screen/screen.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <CLI/CLI.hpp>

#include <exception>
#include <new>
#include <sstream>
#include <string>

namespace {

constexpr const char* version = "meshrake-tool " MESHRAKE_VERSION;
constexpr int failed = 1;
constexpr int wrongUsage = 2;

// Writes help and version to the standard output, and faults of the command line to the standard
// error stream.
int reportParse(const CLI::App& app, const CLI::ParseError& parsed) {
    std::ostringstream out, errors;
    const int status = app.exit(parsed, out, errors);
    screen::write(out.str());
    screen::flush();
    std::istringstream lines(errors.str());
    for (std::string line; std::getline(lines, line);) screen::writeError(screen::printable(line));
    return status == 0 ? 0 : wrongUsage;
}

int parseAndRun(int argc, const char* const* argv) {
    CLI::App app("Companion of meshrake for its problems and binary data sets", "meshrake-tool");
    app.set_version_flag("--version", version);
    app.require_subcommand(0, 1); // with a least of 1, an unknown name would not be reported
    commands::Run run;
    for (const commands::Command& command : commands::all()) {
        CLI::App& sub = *app.add_subcommand(command.name, command.description);
        sub.set_version_flag("--version", version);
        sub.callback([&run, selected = command.add(sub)] { run = selected; });
    }
    try {
        app.parse(argc, argv);
        if (!run) throw CLI::RequiredError("A subcommand");
    } catch (const CLI::ParseError& parsed) {
        return reportParse(app, parsed);
    }
    const int status = run();
    screen::flush();
    return status;
}

} // namespace

int meshrakeTool(int argc, const char* const* argv) {
    try {
        return parseAndRun(argc, argv);
    } catch (const error::RunEnded& ended) {
        return ended.status;
    } catch (const std::bad_alloc&) {
        screen::writeError("meshrake-tool: not enough memory");
    } catch (const std::exception& failure) {
        screen::writeError("meshrake-tool: " + screen::printable(failure.what()));
    }
    return failed;
}
