#pragma once

#include "meshrake/model/domain.hpp"

namespace mesh_shaping {

// Elevations of the nodes at the current output time, nodeCount, length unit.
const std::vector<double>& elevation(const model::Domain& domain);

} // namespace mesh_shaping
