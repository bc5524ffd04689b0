#pragma once

#include "meshrake/model/domain.hpp"

// Compares results of the last output time with the observation set of the run, which is empty
// afterwards. If the run has no such result, it ends; the message says which file has the result.
namespace observation_compare {

// Compares heads of pm, or water depths of olf, with the observations inside the ranges of the
// control file. The simulated value is that of the nearest node or, in a mesh of bricks,
// interpolated with the shape values of the observation. Observation i uses the nodes of element i,
// whichever element contains it. If a compared observation has no such element, the run ends.
void compare_heads_output(const model::Domain& domain);

// Compare the elevation of the water table, and the depth to it, with all observations. The
// simulated value is that of the top node of the nearest column.
void compare_gwtable_elevation_output(const model::Domain& domain);
void compare_deth2gwtable_output(const model::Domain& domain);

} // namespace observation_compare
