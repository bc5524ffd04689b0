#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Processes the output times from `run.startTimeIndex` to the last index before one without result
// files. The first output time in the time window creates the data sets; each later one adds a
// zone. Without any output time, zone 1 has the mesh and its properties alone.
void timeLoop(Domains& domains);

} // namespace run
