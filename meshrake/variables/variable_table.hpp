#pragma once

#include "meshrake/plot_data/variable_io.hpp"

#include <span>

namespace variables {

// All variables of the plot files of domains with nodes of their own, in the order of their
// columns. A variable that travels the plain road is one row here and nothing else.
std::span<const plot_data::VariableRow> variableTable();

} // namespace variables
