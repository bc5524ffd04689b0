#include "meshrake/run/command_line.hpp"

#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace run {

void readCommandLine(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        std::string argument(StringHelpers::cut(argv[i], 256));
        if (argument.empty()) return;
        StringHelpers::lcase(argument);
        if (argument == "--make_plot_control")
            model::run.makePlotControl = true;
        else
            model::writeScreen("Invalid command line option: " + argument);
    }
}

} // namespace run
