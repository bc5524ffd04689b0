#pragma once

#include "meshrake/model/domain.hpp"

namespace model {

// Reads <prefix>o.coordinates_<tag>: a record file without a header.
//
//   pm: nodeCount; x, y, z of node 1, of node 2 and so on, 64-bit reals; three integers, the third
//   of them sheetCount (0: derived from the first column of nodes).
//   Others: nodeCount; couplingScheme; linkToPm; linkFromPm. Only olf then has wallsPresent and, if
//   that is true, wallCountA, wallLayers, and the flags, table and values of the wall nodes.
//
// Global node numbers are assigned in the order of the calls: pm, then each multi-node domain. A
// node number outside the mesh and a damaged file end the run.
void coordsRead(Domain& domain, const Domain& pm);

// Reads <prefix>o.elements_<tag>: nodesPerElement; elementCount; elementNodes; elementZone; then
// for olf the wall layers of the elements, for frac link and aperture. Drops the elements of `dual`
// that are in zone 0. Node numbers are those of pm; a slot below 1 is unused. A node number outside
// the mesh and a damaged file end the run.
void elemsRead(Domain& domain, const Domain& pm);

} // namespace model
