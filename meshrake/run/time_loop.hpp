#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Goes through the output times from `run.startTimeIndex` on, up to the first index of which no
// result file is there. The first time in the window gets the first pass, each later one a zone.
void timeLoop(Domains& domains);

} // namespace run
