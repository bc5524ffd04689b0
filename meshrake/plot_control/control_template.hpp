#pragma once

#include "meshrake/model/domain.hpp"

// The control file that a run writes when the problem has none: all instructions that fit this very
// problem, nearly all as comments. Read again, it selects the defaults.
namespace plot_control {

// The top-level section, on `run.controlUnit`.
void writePlotControlInit();

// The block of one domain; nothing for a domain that does not exist.
void writePlotControl(const model::Domain& domain);

// The lines behind the last block.
void writePlotControlEnd();

} // namespace plot_control
