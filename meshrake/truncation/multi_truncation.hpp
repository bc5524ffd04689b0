#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// Selects the elements and nodes of a domain on the multi-node scheme, or of pm, that are written,
// and numbers these nodes: the whole mesh, or the elements inside the truncation that the control
// file requests, with their nodes. `pm` supplies the coordinates. Fills the truncation results of
// `domain`; its `outputIsPacked` then says whether only part of the arrays is written. Reports the
// size of the output mesh on screen and echo file. A mesh with fewer elements than layers ends the
// run if it is truncated by layer.
void multiTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
