#pragma once

#include "meshrake/model/domain.hpp"

// The two passes over a domain with nodes of its own. Both walk the table of variables.
namespace variables {

// First output time: decides which variables the data set holds, and writes its first zone. A pm
// that is only read for others writes nothing.
void initMultiTecplot(model::Domain& domain);

// Every later output time: one more zone, in which what has no new file is shared with zone 1.
void appendMultiTecplot(model::Domain& domain);

} // namespace variables
