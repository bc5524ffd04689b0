#pragma once

namespace run {

// Takes the one option, --make_plot_control in any case, into `run`; shows any other argument as
// invalid and goes on. The scan ends at the first empty argument.
void readCommandLine(int argc, const char* const* argv);

} // namespace run
