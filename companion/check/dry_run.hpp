#pragma once

#include "companion/check/work.hpp"
#include "meshrake/plot_data/variable_io.hpp"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace check {

// Makes all later steps test result files instead of reading them, and write nothing.
void beginDryRun(Work& work);

// Returns the name of a result file without the index of its output time.
std::string withoutIndex(const std::string& file);

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
    std::vector<bool> declared{};       // of each row of the table: the data set has the variable
    std::vector<std::string> files{};   // of each row: a file that was tested, without its index
    std::vector<ColumnTrack> columns{}; // index: number of the variable minus 1
};

// Processes the output times as a run does, with all passes of all domains, and fills the times of
// the report. All faults of files and times become findings.
void passOutputTimes(Work& work, std::vector<DomainTrack>& tracks);

// A variable that is not in the data set, but has a file at the current output time.
struct LateVariable {
    std::size_t row = 0; // of the domain's table of variables
    std::string file{};
    bool isDisabled = false; // by the control file
};

// Declares all variables that are not in the data set of the domain, returns those with a file, and
// restores the state of the domain.
std::vector<LateVariable> lateVariables(Work& work, DomainTrack& track);

} // namespace check
