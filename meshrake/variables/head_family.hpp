#pragma once

#include "meshrake/plot_data/variable_io.hpp"

namespace variables {

// Heads, read from the result file, and the columns computed from them, all in the length unit:
// `Depth` and `LogDepth` in olf and chan, elsewhere `Pressure Head` if its option is on. The
// elevations of the current output time must have been read. A head file that is missing at a later
// output time shares all of these columns.
void headInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void headRead(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

} // namespace variables
