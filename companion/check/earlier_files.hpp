#pragma once

#include "companion/check/work.hpp"

#include <string>

namespace check {

// Returns why a run could not replace this file, empty if it could or if the file does not exist.
// The file is opened but not changed.
std::string whyNotReplaceable(const std::string& path);

// Reports the echo file and the plot files of earlier runs that this run could not replace.
void checkEarlierFiles(Work& work);

} // namespace check
