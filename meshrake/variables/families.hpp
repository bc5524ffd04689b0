#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Variables with one file and one column for each species or mixing fraction.
namespace variables {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// The first member's file decides whether the data set has the family. If it exists, a missing file
// of another member ends the run.
void familyInit(Domain& domain, const VariableRow& row, OutputVar& var);

// A missing file shares the column of its member. The last member's file decides whether the zone
// writes the columns: the files of a family are assumed to exist at the same output times.
void familyRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Redox capacity has one column, with the unit of the first species. The first pass reads the file
// of the first species. Later output times read the files of all mobile species in turn into the
// same column, and each missing file shares the column. The last file decides whether the zone has
// values.
void redoxCapacityInit(Domain& domain, const VariableRow& row, OutputVar& var);
void redoxCapacityRead(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace variables
