#pragma once

#include "companion/check/work.hpp"

#include <cstdint>
#include <string>

namespace check {

// Reports a finding if the plot files are larger than the free space on the disk plus the files
// that they replace.
void checkDiskSpace(Work& work);

// Returns the bytes that are free for this process on the disk of a folder, or a negative number if
// they are not known. A test may replace it.
extern std::int64_t (*freeBytes)(const std::string& folder);

} // namespace check
