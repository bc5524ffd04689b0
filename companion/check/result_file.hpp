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

struct FileTest {
    std::vector<FileFault> faults{}; // the most severe one first
    std::string timeStamp{};         // of the header, empty if it cannot be read
};

// Tests whether the file has the values that a run reads. Reads only its header and the lengths of
// its records.
FileTest testResultFile(const plot_data::ResultFile& file);

// Returns the text of a finding for a header that ended a run with this message.
std::string malformedText(const std::string& message);

} // namespace check
