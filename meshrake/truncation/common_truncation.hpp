#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// Does the same as multiTruncate for a domain on the common-node scheme. `nodeIncluded` and
// `nodeRenumber` are indexed by pm node, `domainNodeIncluded` by the domain's own nodes.
// `outputIsPacked` is always true, because the nodes of the domain are selected from arrays of pm.
// Sets `run.meshNodesPerElement` to the number of used slots of the last included element, or of
// the last element if none is included. A link to a node that is not in the domain ends the run. So
// does a truncation by layer if pm has fewer elements than layers.
void commonTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
