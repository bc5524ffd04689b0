#pragma once

#include "meshrake/model/domain.hpp"

namespace observation_compare {

// Sets the element that contains each observation, and its shape values there.
//
// If <prefix>o.ObsShape.txt exists, reads them from it. The file has a line for each observation:
// the element number in 10 columns, a blank, and eight times a blank and a shape value in 18
// columns. An observation outside the mesh has -1 in all nine fields. Nothing checks that the file
// is for this mesh. A file that is too short or cannot be read ends the run; the message names it.
//
// Otherwise searches the elements, with a line of progress on the screen for each observation, and
// writes the file. An observation outside the mesh then has zeros in the set.
void obs_points_shape(const model::Domain& domain);

} // namespace observation_compare
