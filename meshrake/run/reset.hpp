#pragma once

namespace run {

// Resets the record of the run and the state of each module to that of a program start. Open files
// are not closed, except binary data sets.
void resetAll();

} // namespace run
