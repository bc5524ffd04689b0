#pragma once

#include "meshrake/model/domain.hpp"

// The passes of a domain over the rows of its table of variables, one for each output time. "Multi"
// is for pm and domains on the multi-node scheme, "Common" for domains on the common-node scheme:
// pm must have completed its pass of the output time before them.
namespace variables {

// First output time: decides which variables the data set has, opens it and writes zone 1. A pm
// that is read only because common-node domains take their values from it writes nothing.
void initMultiTecplot(model::Domain& domain);
void initCommonTecplot(model::Domain& domain);

// Later output times: adds a zone. Variables without a file at this output time are shared with
// zone 1.
void appendMultiTecplot(model::Domain& domain);
void appendCommonTecplot(model::Domain& domain);

} // namespace variables
