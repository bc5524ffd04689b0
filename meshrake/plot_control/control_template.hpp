#pragma once

#include "meshrake/model/domain.hpp"

// Writes the control file of a problem that has none, on `run.controlUnit`. It has all instructions
// that apply to the problem, nearly all as comments. A run that reads it uses the defaults.
namespace plot_control {

// Writes the first section.
void writePlotControlInit();

// Writes the block of a domain; nothing for a domain that does not exist.
void writePlotControl(const model::Domain& domain);

// Writes the lines after the last block.
void writePlotControlEnd();

} // namespace plot_control
