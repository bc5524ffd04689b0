#pragma once

#include "meshrake/model/domain.hpp"

// Reads the control text without comments from `run.controlUnit`: a first section, then a block for
// each domain to write, with instructions and the lines that disable its options. The first 60
// characters of a line count, in any case. A value that cannot be read ends the run; a line that is
// not an instruction is reported and skipped.
namespace plot_control {

// Reads the first section, up to its "end".
void readPlotControlInit();

// Finds and reads the block of the domain; a domain without one is not written. For `addition`:
// reads the instructions that may be anywhere after the first section.
void readPlotControl(model::Domain& domain);

} // namespace plot_control
