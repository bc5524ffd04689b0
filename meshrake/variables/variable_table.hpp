#pragma once

#include "meshrake/plot_data/variable_road.hpp"

#include <span>

namespace variables {

// All variables of the plot files of domains with nodes of their own, in the order of their
// columns. A variable that travels the plain road is one row here and nothing else.
std::span<const plot_data::VariableRow> variableTable();

// True when the row is for this domain and no option switches it off.
bool applies(const plot_data::VariableRow& row, const model::Domain& domain);

// Gives the domain a fresh output variable for each row.
void createOutputVars(model::Domain& domain);

} // namespace variables
