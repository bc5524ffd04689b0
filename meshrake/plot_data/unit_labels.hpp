#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

namespace plot_data {

// Collects the unit of a variable: `label` is an expression of dimension letters such as
// "M * L^-3"; an empty one leaves the variable without a unit.
void tecplotVarUnitsAdd(std::string_view varName, std::int32_t varNumber, std::string_view label,
                        model::Domain& domain);

// The same for a variable of a transport species, from 0: the expression is first adapted to a
// species that is heat or is made of particles.
void tecplotTransVarUnitsAdd(std::size_t speciesIndex, std::string_view varName,
                             std::int32_t varNumber, std::string_view label, model::Domain& domain);

// Puts the collected units into the open data set: all comment lines, then the auxiliary data.
void tecplotVarUnitsWrite(model::Domain& domain);

} // namespace plot_data
