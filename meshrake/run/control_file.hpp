#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Reads <prefix>.plot.control. If it does not exist, writes the template instead and leaves all
// options at their defaults. With --make_plot_control, replaces it by the template and ends the
// run.
void processControlFile(Domains& domains);

} // namespace run
