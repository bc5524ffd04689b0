#pragma once

#include "meshrake/model/domain.hpp"

namespace observation_compare {

// Elements that hold the points of the observation set, and their shape values there.
//
// They come from <prefix>o.ObsShape.txt if that exists: a line for each point, the element number
// in 10 columns and eight times a blank, a blank more and 18 columns of a shape value; a point
// outside the mesh has -1 throughout. The file is trusted as it stands; one that is too short or
// cannot be read ends the run with its name.
//
// Otherwise the points are searched for, with a line of progress on the screen for each, and the
// file is written. A point outside then keeps zeros in the set.
void obs_points_shape(const model::Domain& domain);

} // namespace observation_compare
