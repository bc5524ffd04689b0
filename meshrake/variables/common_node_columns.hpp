#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Columns of a common-node domain that show the values of pm: declared where pm has the variable of
// the same key, written from pm's arrays with the node mask of the domain. pm must have completed
// the same step of the output time before.
namespace variables {

// One column. Where pm has none, the domain's option is cleared for the rest of the run.
void commonNodeInit(model::Domain& domain, const plot_data::VariableRow& row,
                    model::OutputVar& var);

// Heads and, if their option is on, pressure heads.
void commonNodeHeadInit(model::Domain& domain, const plot_data::VariableRow& row,
                        model::OutputVar& var);

// One column for each species; that of heat is a temperature.
void commonNodeConcInit(model::Domain& domain, const plot_data::VariableRow& row,
                        model::OutputVar& var);

// Later output time: shares the columns if pm has no new values.
void commonNodeRead(model::Domain& domain, const plot_data::VariableRow& row,
                    model::OutputVar& var);

// Writes the values of pm at the nodes of the domain.
void commonNodeWrite(model::Domain& domain, const plot_data::VariableRow& row,
                     model::OutputVar& var);

} // namespace variables
