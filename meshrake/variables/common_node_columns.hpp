#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Columns of a domain that shares the nodes of pm whose values are pm's own: declared where pm has
// them, written from pm's arrays. pm must have gone through its step of the output time before.
namespace variables {

// One column; where pm has none the domain's option is switched off for the run.
void lentInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

// Heads, and pressure heads unless they are switched off.
void lentHeadInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

// One column for each species; that of heat is a temperature.
void lentConcInit(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

void lentRead(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);
void lentWrite(model::Domain& domain, const plot_data::VariableRow& row, model::OutputVar& var);

} // namespace variables
