#pragma once

#include "meshrake/model/domain.hpp"

namespace paraview {

// Writes mesh and values of a domain with nodes of its own, as they are at the current output time,
// to the legacy VTK file <prefix>o.<domain>.<index>.vtk. Which variables stand in it was decided in
// the first pass. A time stamp that is no number and a failed open or write end the run.
void multiParaview(model::Domain& domain);

} // namespace paraview
