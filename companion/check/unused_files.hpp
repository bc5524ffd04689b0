#pragma once

#include "companion/check/dry_run.hpp"

namespace check {

// Reports result files that are not in the plot files: variables whose files begin at a later
// output time, files after a gap between the output times, and kinds of files that no variable
// reads.
void findUnusedFiles(Work& work, std::vector<DomainTrack>& tracks);

} // namespace check
