#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Columns that no result file holds: they follow from the layered mesh of pm, whose nodes are
// numbered sheet by sheet from the bottom up and whose elements layer by layer. A division by zero
// for want of sheets or layers ends the run.
namespace derived_columns {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// X, Y and Z of the nodes.
void coordinatesInit(Domain& domain, const VariableRow& row, OutputVar& var);
void coordinatesWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Number of the pm node under each node; not where walls put several nodes in one place.
void nodeNumberInit(Domain& domain, const VariableRow& row, OutputVar& var);
void write3DNodeNumber(Domain& domain, const VariableRow& row, OutputVar& var);

// Layer of each element, its place in the layer, and its mean height.
void meshColumnInit(Domain& domain, const VariableRow& row, OutputVar& var);
void writeLayerNumber(Domain& domain, const VariableRow& row, OutputVar& var);
void writeColumnNumber(Domain& domain, const VariableRow& row, OutputVar& var);
void writeElementThickness(Domain& domain, const VariableRow& row, OutputVar& var);

// Length by which each node lies below the top of its column in a mesh of these sheets, at least
// one. `depth` holds zeros, one for each node; those of the top sheet and behind it stay.
void computeDepthBelowTop(const Domain& pm, std::size_t sheetNodes, std::size_t sheets,
                          std::vector<double>& depth);

// The same as a column; only for the plot of depths below the surface.
void depth2SurfInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Aperture of the fracture elements, from the element list.
void apertureWrite(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace derived_columns
