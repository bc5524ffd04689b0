#pragma once

namespace run {

// Puts all state of the program back to that of a program start: the record of the run and the
// state of each module. Open files are not closed, except for binary data sets.
void resetAll();

} // namespace run
