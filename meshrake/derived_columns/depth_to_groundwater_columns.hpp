#pragma once

#include "meshrake/plot_data/variable_io.hpp"

namespace derived_columns {

// Depths to the water table, computed from the heads of the current output time; one pair for the
// depth of every node and one for the depth of every column. The heads must have been read.
void depth2gwtInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void depth2gwtRead(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void depth2gwt2dInit(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);
void depth2gwt2dRead(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);

} // namespace derived_columns
