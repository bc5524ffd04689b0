#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Variables with a file and a column for each species or mixing fraction. In the first pass the
// first file decides for all of the family, and the others must be there too. Later each file that
// is missing shares its own column, and the last one decides whether the columns are written: the
// files of a family are taken to come and go together.
namespace variables {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

void familyInit(Domain& domain, const VariableRow& row, OutputVar& var);
void familyRead(Domain& domain, const VariableRow& row, OutputVar& var);

// One column that the files of all mobile species take turns to fill.
void redoxCapacityInit(Domain& domain, const VariableRow& row, OutputVar& var);
void redoxCapacityRead(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace variables
