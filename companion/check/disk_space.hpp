#pragma once

#include "companion/check/work.hpp"

#include <cstdint>
#include <string>

namespace check {

// Compares the sizes of the plot files with the free space on the disk, plus the sizes of the files
// that they replace.
void checkDiskSpace(Work& work);

// Bytes that are free for this process on the disk of a folder; below 0 if they are not known. A
// test may replace it.
extern std::int64_t (*freeBytes)(const std::string& folder);

} // namespace check
