#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <vector>

// Thickness of the zones of pm elements over the surface.
namespace surface_plots {

// Results for one zone, length unit, 0 where the column has no element of the zone.
struct Isopach {
    std::vector<double> topElevation;  // nodes of olf
    std::vector<double> zoneThickness; // elements of olf
};

// Computes the results for a zone; the arrays must be allocated. pm element e + L * (elements of
// olf) is the element of layer L above olf element e, and the nodes of the lowest sheet of pm have
// the same numbers as those of olf.
void compute_isopach_structure(std::int32_t zone, const model::Domain& olf, const model::Domain& pm,
                               Isopach& isopach);

// Writes the data set <prefix>o.pm_Isopach, with a data-set zone for each zone of pm elements from
// 1 to the highest number. The record of olf is reused for this data set, so the data set of the
// run must be closed. A surface without nodes or elements, unused node slots in pm, elements of the
// lowest layer with nodes that are not in olf, and a zone number above 100000 and above the number
// of elements end the run before anything is written.
void plot_pmzone_isopach_structure(model::Domain& olf, const model::Domain& pm);

} // namespace surface_plots
