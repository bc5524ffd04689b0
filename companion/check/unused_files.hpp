#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Reports what keeps result files out of the plot files: variables whose files begin at a later
// output time, gaps between the output times, and kinds of files that no variable reads.
void findUnusedFiles(Work& work, std::vector<DomainTrack>& tracks);

} // namespace check
