#pragma once

namespace run {

// Sets `run.makePlotControl` if the command line has --make_plot_control, in upper or lower case.
// Reports any other argument on the screen. Stops at the first empty argument.
void readCommandLine(int argc, const char* const* argv);

} // namespace run
