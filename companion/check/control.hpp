#pragma once

#include "companion/check/work.hpp"

namespace check {

// Reads the control file as a run does, sets the options of the run and of the domains, and reports
// every line that a run would skip. Without a control file all options keep their defaults.
void readControlFile(Work& work);

} // namespace check
