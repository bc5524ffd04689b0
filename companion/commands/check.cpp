#include "companion/check/check.hpp"

#include "companion/commands/commands.hpp"
#include "companion/screen/screen.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace commands {

namespace {

struct Options {
    std::string problem = ".";
    bool json = false;
};

int examineProblem(const Options& options) {
    const check::Report report = check::examine(options.problem);
    screen::write(options.json ? check::jsonOf(report) : check::textOf(report));
    return report.findings.empty() ? 0 : 1;
}

} // namespace

Run addCheck(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    app.add_option("PROBLEM", options->problem,
                   "Folder of the problem, or its prefix; default: the current folder");
    app.add_flag("--json", options->json, "Print the report as JSON");
    return [options] { return examineProblem(*options); };
}

} // namespace commands
