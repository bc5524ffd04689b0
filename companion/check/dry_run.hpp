#pragma once

#include "companion/check/work.hpp"
#include "meshrake/plot_data/variable_io.hpp"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace check {

// The result files are tested instead of read from now on, and nothing is written.
void beginDryRun(Work& work);

// A column of a data set.
struct ColumnTrack {
    std::string name{};
    std::size_t row = 0; // of the domain's table of variables
    model::DataType type = model::DataType::real8;
    model::Location location = model::Location::node;
    std::vector<CellState> cells{}; // one for each entry of Report::times
};

// A domain that a run processes.
struct DomainTrack {
    model::Domain* domain = nullptr;
    bool isOpen = false;                // its data set was begun
    std::vector<bool> declared{};       // by row of the table: the data set has the variable
    std::vector<std::string> files{};   // by row: a file that was tested, without its index
    std::vector<ColumnTrack> columns{}; // by number of the variable, less 1
};

// Goes through the output times as a run does, with all passes of all domains, and fills the times
// of the report. All faults of the files and times are findings.
void passOutputTimes(Work& work, std::vector<DomainTrack>& tracks);

// Declares, at the current output time, the variables that the data set of the domain lacks, and
// puts the domain back to what it was. Returns the rows that have a file now, with that file; rows
// that the control file disables are among them.
struct LateVariable {
    std::size_t row = 0;
    std::string file{};
    bool isDisabled = false;
};
std::vector<LateVariable> lateVariables(Work& work, DomainTrack& track);

} // namespace check
