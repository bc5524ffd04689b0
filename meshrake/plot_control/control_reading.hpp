#pragma once

#include "meshrake/model/domain.hpp"

// Reading of the stripped control text from `run.controlUnit`: a top-level section, then a block
// for each domain that is wanted, with the lines that switch its options off. Lines count to their
// 60th character and are compared without regard to case. A value that cannot be read ends the run;
// a line that is no instruction is shown and passed over.
namespace plot_control {

// The top-level section, up to its "end".
void readPlotControlInit();

// One line with the number of digits of the time index in file names, 4 to 10.
void readOutputFileSuffix();

// Finds the block of the domain wherever it stands; without one the domain is not written. For
// `addition`: the commands that stand anywhere behind the top-level section.
void readPlotControl(model::Domain& domain);

} // namespace plot_control
