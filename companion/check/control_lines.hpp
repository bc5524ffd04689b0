#pragma once

#include "companion/check/work.hpp"
#include "meshrake/plot_control/control_source.hpp"

#include <optional>
#include <string>
#include <vector>

namespace check {

// A line of the control text, without comments and with the lines of included files.
struct ControlLine {
    std::string file;
    int number = 0;
    std::string text;
    std::string folded; // as it is compared: at most 60 characters, lower case
    std::optional<plot_control::LineUse> use{}; // as the reader of the run reported it
    bool isValue = false;                       // read by the instruction before it
    bool isAnywhere = false; // an instruction that may be in any block, or its values
};

// Reads the control text of a file. A file that cannot be read, and an included file that does not
// exist, are findings.
std::vector<ControlLine> readControlLines(Work& work, const std::string& file);

} // namespace check
