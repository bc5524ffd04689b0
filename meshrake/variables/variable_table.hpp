#pragma once

#include "meshrake/plot_data/variable_io.hpp"

#include <span>

namespace variables {

// Returns all variables of pm and of domains on the multi-node scheme, in the order of their
// columns. A variable with one file for each output time is a row here and needs no other code.
std::span<const plot_data::VariableRow> variableTable();

} // namespace variables
