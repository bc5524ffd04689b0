#pragma once

#include "meshrake/plot_data/variable_io.hpp"

#include <span>

namespace variables {

// The variables of domains that share the nodes of pm, in the order of their columns.
std::span<const plot_data::VariableRow> commonNodeTable();

} // namespace variables
