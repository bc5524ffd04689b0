#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <vector>

// The plots at the end of a run reuse the record of a domain for a data set of their own.
// Truncation comes first where the run did not write the domain.
namespace surface_plots {

// Thickness and top of one zone of pm elements over the surface, length unit.
struct Isopach {
    std::vector<double> topElevation;  // nodes of olf, 0 where the zone is not
    std::vector<double> zoneThickness; // elements of olf
};

// Clears `isopach`, which must be allocated, and fills it for a zone. The elements of pm stand in
// layers over those of olf, and the first sheet of pm has the node numbers of olf.
void compute_isopach_structure(std::int32_t zone, const model::Domain& olf, const model::Domain& pm,
                               Isopach& isopach);

// Writes <prefix>o.pm_Isopach, a zone of the data set for each zone of pm elements from 1 to the
// highest. A surface without nodes or elements, and elements of pm that do not stand over it, end
// the run before anything is written.
void plot_pmzone_isopach_structure(model::Domain& olf, const model::Domain& pm);

} // namespace surface_plots
