#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// Decides which elements and nodes of a domain with nodes of its own reach the output, and gives
// the kept nodes their numbers: all of the mesh, or the elements whose centroid lies in the ranges
// or layers that the control file asks for. Fills the truncation results of `domain` and reports
// them on screen and echo file. `pm` lends its coordinates. A layer size of 0 ends the run.
void multiTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
