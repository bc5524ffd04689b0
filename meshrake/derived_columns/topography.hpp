#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Time-varying topography: node elevations and, in pm, element zones for each output time. The data
// set has the columns if the file of the first output time exists. An output time without a file
// keeps the elevations of the previous one and shares the columns with zone 1.
namespace derived_columns {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// Returns the elevations of the nodes at the current output time, nodeCount values, length unit:
// those of the last file with time-varying topography or, without such a file, of the mesh.
const std::vector<double>& elevation(const Domain& domain);

// Read the elevations before the heads, which need them. Declare nothing.
void tvTopoPreInit(Domain& domain, const VariableRow& row, OutputVar& var);
void tvTopoPreRead(Domain& domain, const VariableRow& row, OutputVar& var);

// The column of elevations and, in pm, a second column: mesh elevation minus current elevation,
// positive at a lowered node. They come after the columns of the heads and have the elevations that
// were read for these.
void tvTopoInit(Domain& domain, const VariableRow& row, OutputVar& var);
void tvTopoRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Element zones for each output time.
void tvTopoZoneInit(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace derived_columns
