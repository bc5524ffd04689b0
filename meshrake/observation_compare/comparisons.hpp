#pragma once

#include "meshrake/model/domain.hpp"

// Results of the last output time beside the observation set of the run, which is given back at the
// end. A result that the run never had ends it, with a word on what brings it.
namespace observation_compare {

// Heads of pm, or depths of water of olf, for the observations within the window that the control
// file gives: at the nearest node or, when elements were looked for, by the shape values of the
// point and the nodes of the element that bears the observation's own number. An observation that
// takes part then and has no such element ends the run.
void compare_heads_output(const model::Domain& domain);

// Elevation of the water table, and depth to it, at the top of the nearest column, for all
// observations.
void compare_gwtable_elevation_output(const model::Domain& domain);
void compare_deth2gwtable_output(const model::Domain& domain);

} // namespace observation_compare
