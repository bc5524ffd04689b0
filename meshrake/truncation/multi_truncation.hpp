#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// Selects the elements and nodes of pm, or of a domain on the multi-node scheme, that are written,
// and numbers these nodes. Without a requested truncation this is the whole mesh, otherwise the
// elements inside the truncation and their nodes. `pm` supplies the coordinates.
//
// Sets the truncation results of `domain`. `outputIsPacked` is true if the mesh is truncated.
// Reports the size of the output mesh on screen and echo file. In a truncation by layer, a mesh
// with fewer elements than layers ends the run.
void multiTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
