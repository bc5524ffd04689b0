#pragma once

#include "meshrake/model/domain.hpp"

#include <string>
#include <string_view>

// What the plots at the end of a run have in common.
namespace surface_plots {

// Ends the run for a surface without nodes or elements, by which the plots divide.
void checkSurface(const model::Domain& olf, std::string_view plot);

// Truncates the domain as its first output time would have; nothing where that was done.
void truncateForPlot(model::Domain& domain, const model::Domain& pm);

// Announces the plot and its file on screen and echo file; returns the file's name, without
// extension.
std::string announcePlot(std::string_view plot, std::string_view file);

// Declares a variable of 64-bit reals in the length unit and returns its number.
std::int32_t declareLength(std::string_view name, model::Domain& domain);

} // namespace surface_plots
