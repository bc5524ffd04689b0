#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Fills the domains of the report, with their variables and the sizes of their data sets, from the
// passes over the output times. Variables without a file at an output time are findings.
void reportDomains(Work& work, const std::vector<DomainTrack>& tracks);

// Reports output times that are not numbers, or not later than the previous one.
void checkTimes(Work& work);

} // namespace check
