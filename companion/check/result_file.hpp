#pragma once

#include "companion/check/report.hpp"
#include "meshrake/plot_data/variable_io.hpp"

#include <string>
#include <vector>

namespace check {

struct FileFault {
    CellState state = CellState::present;
    std::string_view kind; // as in `Finding`
    std::string text;
    bool endsRun = false;
};

// Tests whether the file has the values that a run reads, without reading them: its header and the
// lengths of its records. `time` is that of the output time, not a number if it is not known.
// Returns what is wrong, the first entry being the worst; empty for a good file.
std::vector<FileFault> testResultFile(const plot_data::ResultFile& file, double time);

} // namespace check
