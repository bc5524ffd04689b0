#pragma once

#include "tests/support/sample_files.hpp"
#include "tvncommon/io/system_calls.hpp"

// The contents that the files of a run may have after a power cut.
namespace power_cut {

// Returns the data sets, sidecars and index files of the working directory.
sample_files::Problem recordedFiles();

// Returns a table of these calls that records the calls that change such a file. The present
// contents of the files are on the disk. A sync is recorded and not done.
system_calls::Table recording(const system_calls::Table& calls);

// Returns the different contents that these files may have after any of the calls. Synced data are
// on the disk. Each other write of a page may be missing, or may have left zeros where it extended
// the file. Until their folder is synced, new, changed or removed names may also be missing.
//
// The states of each call: all writes and none; single writes alone and missing; the first names,
// and all names but one; and random choices, the same in each run. Without `many` there are only
// about six single writes and two random choices.
std::vector<sample_files::Problem> statesLeft(bool many);

} // namespace power_cut
