#pragma once

#include "meshrake/model/domain.hpp"

// Reads the control text without comments from `run.controlUnit`. It has a first section, then a
// block for each domain to write, with instructions and the lines that disable its options. Only
// the first 60 characters of a line are used, in upper or lower case. A value that cannot be read
// ends the run. A line that is not an instruction is skipped and reported on screen and echo file.
namespace plot_control {

inline constexpr std::size_t lineLimit = 60; // characters of a line that count

// Reads the first section, up to its "end".
void readPlotControlInit();

// Finds and reads the block of the domain. A domain without a block is not written. For `addition`
// reads the instructions that may be anywhere after the first section.
void readPlotControl(model::Domain& domain);

// Reads a block, or the instructions of `addition`, from the next line on.
void readRest(model::Domain& domain);

} // namespace plot_control
