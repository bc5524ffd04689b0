#pragma once

#include "meshrake/model/domain.hpp"

#include <span>
#include <string_view>

// Steps that the plots at the end of a run share.
namespace surface_plots {

// Ends the run if the surface has no nodes or no elements: the plots divide by their number. `plot`
// is named in the banner.
void checkSurface(const model::Domain& olf, std::string_view plot);

// Truncates a domain that the run did not write; its results are kept if the run did.
void truncateForPlot(model::Domain& domain, const model::Domain& pm);

// Opens the data set <prefix>o.<file> in the record of `domain`: announces it on screen and echo
// file, declares the variables, all 64-bit reals with the length unit, and writes the file header.
void openPlot(std::string_view plot, std::string_view file,
              std::span<const std::string_view> variables, model::Domain& domain);

} // namespace surface_plots
