#pragma once

#include "meshrake/model/domain.hpp"

namespace truncation {

// The same decision for a domain that shares the nodes of pm: its node mask and numbers go by pm
// node, beside a mask of its own nodes. Its output is packed in any case, since its data lie on
// pm's numbering. A link beyond the domain and a layer size of 0 end the run.
void commonTruncate(model::Domain& domain, const model::Domain& pm);

} // namespace truncation
