#pragma once

namespace run {

// Sets `makePlotControl` of the run for --make_plot_control in any case of letters, the only
// option. Reports any other argument on the screen. Stops at the first empty argument.
void readCommandLine(int argc, const char* const* argv);

} // namespace run
