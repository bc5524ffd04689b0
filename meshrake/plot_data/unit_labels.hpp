#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

namespace plot_data {

// Adds the unit of a variable. `label` is an expression of dimension letters such as "M * L^-3". If
// it is empty, the variable has no unit.
void tecplotVarUnitsAdd(std::string_view varName, std::int32_t varNumber, std::string_view label,
                        model::Domain& domain);

// The same for a variable of a transport species, counted from 0. The expression is first adapted
// to a species that is heat or consists of particles.
void tecplotTransVarUnitsAdd(std::size_t speciesIndex, std::string_view varName,
                             std::int32_t varNumber, std::string_view label, model::Domain& domain);

// Writes the units that were added into the open data set. The text form has all comment lines and
// then the auxiliary data.
void tecplotVarUnitsWrite(model::Domain& domain);

} // namespace plot_data
