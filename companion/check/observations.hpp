#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Reports requested comparisons that are not possible, with the reason, and observations outside
// the mesh. Call it after the output times.
void checkObservations(Work& work);

} // namespace check
