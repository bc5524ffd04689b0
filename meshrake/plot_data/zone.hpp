#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

namespace plot_data {

// Begins the next zone, with the numbers of nodes and elements of the output mesh. `solutionTime`
// may be blank. If `connectivityShareZone` is above 0, the zone shares the node lists of that zone.
// The calls of tecplotVarShareAdd and tecplotVarLocCCAdd since the last zone apply to this zone
// alone.
void tecplotWriteZoneFE(std::string_view title, std::string_view solutionTime,
                        int connectivityShareZone, model::Domain& domain);

// Writes the node lists of the included elements, numbered as the nodes of the output mesh. An
// unused slot repeats a node or, if its shape repeats none, is 0.
void tecplotWriteConnectivity(model::Domain& domain);

// Ends a zone whose arrays are complete: the file has all of it. The next zone or the close of the
// data set has the same effect, later.
void tecplotEndZone(model::Domain& domain);

} // namespace plot_data
