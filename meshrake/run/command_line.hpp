#pragma once

namespace run_driver {

// Takes the one option, --make_plot_control in any case, into `run`; shows any other argument as
// invalid and goes on. The scan ends at the first empty argument.
void readCommandLine(int argc, const char* const* argv);

} // namespace run_driver
