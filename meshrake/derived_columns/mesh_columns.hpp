#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Columns computed from the mesh, without a result file. Their values never change, so later output
// times share them. The mesh of pm is layered: its nodes are numbered sheet by sheet and its
// elements layer by layer, both from the bottom up.
namespace derived_columns {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// Declares the columns of a row that has no file. The `write` step of the row supplies the values.
void meshColumnInit(Domain& domain, const VariableRow& row, OutputVar& var);

// X, Y and Z of the nodes, length unit.
void coordinatesWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Number of the pm node at the position of each node. Not declared with cutoff walls, where several
// nodes have the same position.
void nodeNumberInit(Domain& domain, const VariableRow& row, OutputVar& var);
void write3DNodeNumber(Domain& domain, const VariableRow& row, OutputVar& var);

// Layer of each element and its position in the layer, both from 1. A mesh without layers of
// elements ends the run.
void writeLayerNumber(Domain& domain, const VariableRow& row, OutputVar& var);
void writeColumnNumber(Domain& domain, const VariableRow& row, OutputVar& var);

// Mean height of each element between its lower and upper nodes, length unit. Elements of one node
// and unused node slots end the run.
void writeElementThickness(Domain& domain, const VariableRow& row, OutputVar& var);

// Sets the depth of each node below the top node of its column, length unit. The mesh has at least
// one sheet; each of the `sheets` sheets has `sheetNodes` nodes. `depth` has an entry for each node
// of pm. The entries of the top sheet and of nodes after it are not changed and must be 0.
void computeDepthBelowTop(const Domain& pm, std::size_t sheetNodes, std::size_t sheets,
                          std::vector<double>& depth);

// Declares and computes this depth as a column if the plot of depths below the surface is
// requested. A mesh without sheets ends the run.
void depth2SurfInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Aperture of the fracture elements, length unit, from the element list.
void apertureWrite(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace derived_columns
