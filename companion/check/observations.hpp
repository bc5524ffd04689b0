#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Reports what keeps the comparisons that the control file requests from being made, and
// observations that are outside the mesh. Call it after the output times.
void checkObservations(Work& work);

} // namespace check
