#include "meshrake/mesh_shaping/elevation.hpp"

namespace mesh_shaping {

const std::vector<double>& elevation(const model::Domain& domain) {
    return domain.z;
}

} // namespace mesh_shaping
