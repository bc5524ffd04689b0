#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <vector>

// Isopachs: the thickness of each element zone of pm, in the column of each olf element.
namespace surface_plots {

// Results for one element zone, length unit, 0 in columns without an element of the zone.
struct Isopach {
    std::vector<double> topElevation;  // one for each node of olf
    std::vector<double> zoneThickness; // one for each element of olf
};

// Computes the results for an element zone; the arrays must be allocated. The column of olf element
// e has pm element e + L * (elements of olf) in layer L, all counted from 0. The nodes of the
// lowest sheet of pm have the same numbers as those of olf.
void compute_isopach_structure(std::int32_t zone, const model::Domain& olf, const model::Domain& pm,
                               Isopach& isopach);

// Writes the data set <prefix>o.pm_Isopach, with a zone for each element zone of pm from 1 to the
// highest number. The plot uses the data set record of olf, so olf's own data set must be closed.
//
// The run ends before anything is written if the surface has no nodes or no elements, if an element
// of pm has an unused slot, or if one in the lowest layer has a node that is not in olf. It also
// ends if the highest element zone is above 100000 and above the number of elements.
void plot_pmzone_isopach_structure(model::Domain& olf, const model::Domain& pm);

} // namespace surface_plots
