#pragma once

#include "meshrake/model/domain.hpp"

namespace observation_compare {

// Sets the element that contains each observation, and its shape values there.
//
// If <prefix>o.ObsShape.txt exists, they are read from it: a line for each observation, with the
// element number in 10 columns, a blank, and eight times a blank and a shape value in 18 columns;
// an observation outside the mesh has -1 in all of them. Nothing checks that the file belongs to
// this mesh. One that is too short or cannot be read ends the run; the message names it.
//
// Otherwise the elements are searched, with a line of progress on the screen for each observation,
// and the file is written. An observation outside the mesh then keeps zeros in the set.
void obs_points_shape(const model::Domain& domain);

} // namespace observation_compare
