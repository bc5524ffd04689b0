#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// The five files of the snow package, one column each. Their names have no domain.
namespace variables {

// Each file that exists declares its column. The presence of the last one, the snow cover, decides
// whether the first zone has the values and whether later output times are read at all.
void rainSnowmeltInit(model::Domain& domain, const plot_data::VariableRow& row,
                      model::OutputVar& var);

// If the snow depth file exists, the files of all declared columns are read, and a missing one ends
// the run. Otherwise all columns are shared.
void rainSnowmeltRead(model::Domain& domain, const plot_data::VariableRow& row,
                      model::OutputVar& var);

void rainSnowmeltWrite(model::Domain& domain, const plot_data::VariableRow& row,
                       model::OutputVar& var);

} // namespace variables
