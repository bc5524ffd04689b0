#pragma once

#include "meshrake/plot_data/variable_io.hpp"

#include <span>

namespace variables {

// Returns the variables of domains on the common-node scheme, in the order of their columns.
std::span<const plot_data::VariableRow> commonNodeTable();

} // namespace variables
