#pragma once

#include <functional>
#include <span>

namespace CLI {
class App;
}

// The subcommands of meshrake-tool.
namespace commands {

// Runs a subcommand after its options are read. Returns 0, or 1 if it has findings to report. A
// failure throws std::runtime_error, whose message names the file.
using Run = std::function<int()>;

// A subcommand. `add` adds its options to the command line and returns the function to run, which
// owns their values.
struct Command {
    const char* name;
    const char* description;
    Run (*add)(CLI::App& app);
};
std::span<const Command> all();

// One for each row of the table, in a source of the same name.
Run addCheck(CLI::App& app);
Run addPrint(CLI::App& app);
Run addSeries(CLI::App& app);
Run addXdmf(CLI::App& app);

} // namespace commands
