#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Processes the output times from `startTimeIndex` of the run on, up to the first index without
// result files. The first one in the time window creates the data sets; each later one adds a zone.
void timeLoop(Domains& domains);

} // namespace run
