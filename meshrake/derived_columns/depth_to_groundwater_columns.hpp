#pragma once

#include "meshrake/plot_data/variable_io.hpp"

namespace derived_columns {

// The columns Depth2GWT (a value for each node) and Depth2GWT2D (for each column of nodes), in the
// length unit. They are computed from the heads and elevations of the current output time, which
// must have been read. They are not declared without heads or for elements of 4 nodes. Fewer than
// one sheet, or fewer nodes than sheets, ends the run. The columns have arrays only if a comparison
// with observations or a VTK file needs them; otherwise their values are computed for the write.
void depth2gwtInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void depth2gwtRead(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void depth2gwtWrite(model::Domain& domain, const plot_data::VariableRow& row,
                    model::OutputVar& var);
void depth2gwt2dInit(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);
void depth2gwt2dRead(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);
void depth2gwt2dWrite(model::Domain& domain, const plot_data::VariableRow& row,
                      model::OutputVar& var);

} // namespace derived_columns
