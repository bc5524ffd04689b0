#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// A ground surface that moves: node elevations and, in pm, element zones for each output time. The
// presence of the first output time's file decides for the run; a later time without one keeps the
// old elevations and shares the columns.
namespace derived_columns {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// Elevations of the nodes at the current output time, nodeCount, length unit: those of the file
// where topography moves, else the mesh's.
const std::vector<double>& elevation(const Domain& domain);

// The elevations alone, ahead of the heads that need them.
void tvTopoPreInit(Domain& domain, const VariableRow& row, OutputVar& var);
void tvTopoPreRead(Domain& domain, const VariableRow& row, OutputVar& var);

// The column of elevations and, in pm, that of mesh elevation minus current elevation.
void tvTopoInit(Domain& domain, const VariableRow& row, OutputVar& var);
void tvTopoRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Element zones that move with the ground.
void tvTopoZoneInit(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace derived_columns
