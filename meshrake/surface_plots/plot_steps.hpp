#pragma once

#include "meshrake/model/domain.hpp"

#include <span>
#include <string_view>

// Steps that the plots at the end of a run share.
namespace surface_plots {

// Ends the run if the surface has no nodes or no elements, because the plots divide by their
// number. The banner names `plot`.
void checkSurface(const model::Domain& olf, std::string_view plot);

// Truncates a domain that the run has not written. Otherwise keeps the truncation of the run.
void truncateForPlot(model::Domain& domain, const model::Domain& pm);

// Opens the data set <prefix>o.<file> in the record of `domain` and writes the file header.
// Declares the variables as 64-bit reals with the length unit. Reports the file on screen and echo
// file.
void openPlot(std::string_view plot, std::string_view file,
              std::span<const std::string_view> variables, model::Domain& domain);

} // namespace surface_plots
