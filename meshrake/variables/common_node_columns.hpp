#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Columns of a common-node domain with the values of pm at the nodes of the domain. They are
// declared if pm has the variable with the same key, and written from pm's arrays. pm must have
// completed the same step of the output time before.
namespace variables {

// One column. If pm does not have it, disables the domain's option for the rest of the run.
void commonNodeInit(model::Domain& domain, const plot_data::VariableRow& row,
                    model::OutputVar& var);

// Heads and, if their option is enabled, pressure heads.
void commonNodeHeadInit(model::Domain& domain, const plot_data::VariableRow& row,
                        model::OutputVar& var);

// One column for each species. The column of heat is a temperature.
void commonNodeConcInit(model::Domain& domain, const plot_data::VariableRow& row,
                        model::OutputVar& var);

// Later output time: shares the columns if pm has no new values.
void commonNodeRead(model::Domain& domain, const plot_data::VariableRow& row,
                    model::OutputVar& var);

// Writes the values of pm at the nodes of the domain.
void commonNodeWrite(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);

} // namespace variables
