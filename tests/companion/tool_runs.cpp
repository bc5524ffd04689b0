#include "tests/companion/tool_runs.hpp"

#include "companion/meshrake_tool.hpp"

namespace tool_runs {

runs::Ran tool(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"meshrake-tool"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    return runs::keepStreams(
        [&] { return meshrakeTool(static_cast<int>(argv.size()), argv.data()); });
}

runs::Ran tool(const std::string& subcommand, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), subcommand);
    return tool(arguments);
}

ToolRun::ToolRun() {
    problem = sample_files::twoTimes();
    const runs::Ran ran = run("tecplot binary mode\nend\nwrite pm domain file\nend\n"
                              "write olf domain file\nend\n");
    EXPECT_EQ(ran.status, 0) << ran.errors;
}

} // namespace tool_runs
