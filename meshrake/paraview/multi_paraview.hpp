#pragma once

#include "meshrake/model/domain.hpp"

namespace paraview {

// Writes mesh and values of pm or a multi-node domain at the current output time to the legacy VTK
// file <prefix>o.<domain>.<index>.vtk, with the variables that the first pass found. An invalid
// time stamp and a failed open or write end the run.
void multiParaview(model::Domain& domain);

} // namespace paraview
