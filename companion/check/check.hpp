#pragma once

#include "companion/check/report.hpp"

#include <string>

namespace check {

// Examines the problem in a folder, whose `batch.pfx` names the prefix, or the problem with this
// prefix, which may begin with a folder. A name that is both is the prefix. Writes nothing.
// Everything that would end a run is a finding; what comes after it is examined too. Throws
// std::runtime_error if there is no problem to examine.
Report examine(const std::string& folderOrPrefix);

// The report as text for a terminal, and as JSON.
std::string textOf(const Report& report);
std::string jsonOf(const Report& report);

} // namespace check
