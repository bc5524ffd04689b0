#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

// Writes the control file of a problem that has none, on `run.controlUnit`. It has all instructions
// that apply to the problem, nearly all as comments. A run that reads it uses the defaults.
namespace plot_control {

// A line at the end of the template that has no effect.
inline constexpr std::string_view timeSeriesLine = "write time series file";

// Writes the first section.
void writePlotControlInit();

// Writes the block of a domain, if the domain exists.
void writePlotControl(const model::Domain& domain);

// Writes the lines after the last block.
void writePlotControlEnd();

} // namespace plot_control
