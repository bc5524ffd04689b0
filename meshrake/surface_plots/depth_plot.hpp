#pragma once

#include "meshrake/model/domain.hpp"

namespace surface_plots {

// Writes the data set <prefix>o.pm_DepthToSurf: the depth of each node of pm below the top node of
// its column, length unit. Each sheet of pm is assumed to have as many nodes as olf. The plot uses
// the data set record of pm, so pm's own data set must be closed. A surface without nodes or
// elements, or with more nodes than pm, ends the run before anything is written.
void plot_pmdepth_grndsurf(const model::Domain& olf, model::Domain& pm);

} // namespace surface_plots
