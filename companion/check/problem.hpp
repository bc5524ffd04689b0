#pragma once

#include "companion/check/work.hpp"

#include <string>

namespace check {

// Finds the problem that a run in this folder, or with this prefix, would process, makes its folder
// the working directory and sets the prefix of the run. Throws std::runtime_error if there is none.
void findProblem(Work& work, const std::string& folderOrPrefix);

// Reads title, species, mixing fractions and the meshes of all domains. A domain that cannot be
// read is treated as one that does not exist.
void readProblem(Work& work);

} // namespace check
