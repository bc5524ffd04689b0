#pragma once

#include "meshrake/model/domain.hpp"

// Compares results of the last output time with the observation set of the run, which is empty
// afterwards. A result that the run does not have ends it; the message says what provides the
// result.
namespace observation_compare {

// Compares heads of pm, or water depths of olf, inside the ranges of the control file: at the
// nearest node or, in a mesh of bricks, interpolated with the shape values of the observation.
// Observation i uses the nodes of element i, whichever element contains it; the run ends if an
// observation to compare has no such element.
void compare_heads_output(const model::Domain& domain);

// Compare the elevation of the water table, and the depth to it, at the top of the nearest column,
// for all observations.
void compare_gwtable_elevation_output(const model::Domain& domain);
void compare_deth2gwtable_output(const model::Domain& domain);

} // namespace observation_compare
