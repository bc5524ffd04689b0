#pragma once

#include "meshrake/model/domain.hpp"

// Field measurements from text files of free-form numbers: how many there are, then each on a line
// of its own, or on several. What follows the last number of a measurement on its line is
// passed over. Each reader builds the observation set of the run anew and, for pm with bricks of
// eight nodes, locates its points in the elements. A count that the file cannot hold, a file that
// ends too soon and what is no number end the run with the file's name.
namespace observation_compare {

// <prefix>.observed_heads as x, y, z and value. A domain other than pm ends the run.
void read_obs_heads_xyz(const model::Domain& domain);

// <prefix>.observed_heads for pm, <prefix>.observed_heads_olf for olf, as x, y and value.
void read_obs_heads_xy(const model::Domain& domain);

// <prefix>.observed_d2gwt as x, y and value.
void read_d2gwt_heads(const model::Domain& domain);

} // namespace observation_compare
