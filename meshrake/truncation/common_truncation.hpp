#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// Does the same as multiTruncate for a domain on the common-node scheme. `nodeIncluded` and
// `nodeRenumber` are indexed by pm node, `domainNodeIncluded` by the domain's own nodes.
// `outputIsPacked` then is true in any case, because the arrays of pm are written and these nodes
// selected from them. A link to a node that is not in the domain ends the run, and so does a
// truncation by layer of a pm mesh with fewer elements than layers.
void commonTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
