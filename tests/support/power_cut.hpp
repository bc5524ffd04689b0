#pragma once

#include "tests/support/sample_files.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <map>
#include <string>
#include <vector>

// What a power cut may leave of the files that a run writes.
namespace power_cut {

// Contents by name.
using Files = std::map<std::string, sample_files::Bytes>;

// The data sets, sidecars and index files of the working directory.
Files recordedFiles();

// The calls of `calls`; from now on those that change such a file are recorded. What the files hold
// now is on the disk; a sync is recorded and not done.
system_calls::Table recording(const system_calls::Table& calls);

// The different contents that these files may have after any of the calls. What was synced is on
// the disk. Of the other writes, page by page, any may be missing, or have left zeros where they
// extended the file. Until their folder is synced, any new, changed or removed names may be missing
// too. Taken are, for each call, all of the writes and none, single ones alone and missing; of the
// names the first ones and all but one; and random choices, the same each time. Without `many`
// only about six single writes and two choices.
std::vector<Files> statesLeft(bool many);

} // namespace power_cut
