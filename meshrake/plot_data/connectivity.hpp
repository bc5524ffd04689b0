#pragma once

#include "meshrake/model/domain.hpp"

namespace plot_data {

// Node lists of the included elements, numbered as the nodes of the output mesh; an unused slot
// repeats a node or, where that shape has none to repeat, is 0.
void tecplotWriteConnectivity(model::Domain& domain);

} // namespace plot_data
