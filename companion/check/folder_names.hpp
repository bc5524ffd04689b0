#pragma once

#include <string>
#include <vector>

namespace check {

// Returns the names in a folder, none if the folder does not exist. Throws std::runtime_error if it
// cannot be listed.
std::vector<std::string> namesIn(const std::string& folder);

} // namespace check
