#pragma once

#include "meshrake/model/domain.hpp"

#include <string>

// Readers of text files of observations, with free-form numbers. The first line has the number of
// observations. Each observation begins on a new line and may continue on the next; the rest of its
// last line is skipped.
//
// Each reader replaces the observation set of the run. For pm with bricks of eight nodes it also
// locates the observations in the elements. A count that does not fit the file, a file that ends
// too soon and an invalid number end the run with a message that names the file.
namespace observation_compare {

// Reads <prefix>.observed_heads as x, y, z and head. A domain other than pm ends the run.
void read_obs_heads_xyz(const model::Domain& domain);

// Reads <prefix>.observed_heads for pm as x, y and elevation, <prefix>.observed_heads_olf for olf
// as x, y and depth.
void read_obs_heads_xy(const model::Domain& domain);

// Reads <prefix>.observed_d2gwt as x, y and depth.
void read_d2gwt_heads(const model::Domain& domain);

// Reads <prefix>.<table> as x, y, z and a value, or without z unless `inSpace`. Does not locate the
// observations. `arrays` is the name of the arrays in the banner of a failed allocation.
void readObservations(const std::string& table, const std::string& arrays, bool inSpace);

} // namespace observation_compare
