#pragma once

#include "companion/data_set/data_set_file.hpp"
#include "tests/support/runs.hpp"

#include <string>
#include <vector>

// Runs of meshrake-tool inside this process, and data sets for them.
namespace tool_runs {

runs::Ran tool(const std::vector<std::string>& arguments);
runs::Ran tool(const std::string& subcommand, std::vector<std::string> arguments);

// In a folder of its own: binary data sets of a column of one brick at two output times, and of its
// surface.
class ToolRun : public runs::ProblemRun {
protected:
    ToolRun();

    const std::string pm = "to.pm.szplt", olf = "to.olf.szplt";
};

} // namespace tool_runs
