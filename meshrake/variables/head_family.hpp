#pragma once

#include "meshrake/plot_data/variable_io.hpp"

namespace variables {

// Heads, read from the result file, and the columns computed from them: `Depth` and its logarithm
// `LogDepth` in olf and chan, elsewhere `Pressure Head` if its option is enabled. All lengths are
// in the length unit. The elevations of the current output time must have been read. If the head
// file is missing at a later output time, the zone shares all of these columns. `Pressure Head` has
// an array only if other domains or a VTK file need it; otherwise it is computed for the write.
void headInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void headRead(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void headWrite(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

} // namespace variables
