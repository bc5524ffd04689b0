#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Reports binary data sets of earlier runs that are unfinished or damaged, and those to which this
// run could not append.
void checkEarlierDataSets(Work& work, const std::vector<DomainTrack>& tracks);

} // namespace check
