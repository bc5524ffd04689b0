#pragma once

#include "meshrake/model/domain.hpp"

// A pass processes the rows of a domain's variable table at one output time. "Multi" is for pm and
// domains on the multi-node scheme, "Common" for domains on the common-node scheme. pm must have
// completed its pass of the output time before the common-node domains.
namespace variables {

// First output time: decides which variables the data set has, opens it and writes zone 1. Writes
// nothing for a pm that is read only because common-node domains take their values from it.
void initMultiTecplot(model::Domain& domain);
void initCommonTecplot(model::Domain& domain);

// Later output times: adds a zone, which shares variables without a file at this output time with
// zone 1.
void appendMultiTecplot(model::Domain& domain);
void appendCommonTecplot(model::Domain& domain);

} // namespace variables
