#pragma once

#include "meshrake/model/domain.hpp"

namespace surface_plots {

// Writes <prefix>o.pm_DepthToSurf: the depth of each node of pm below the top of its column, whose
// nodes lie as many numbers apart as olf has nodes. The record of pm is reused for the data set; a
// pm that the run did not write is truncated first. A surface without nodes or elements, or with
// more nodes than pm, ends the run before anything is written.
void plot_pmdepth_grndsurf(const model::Domain& olf, model::Domain& pm);

} // namespace surface_plots
