#pragma once

#include "meshrake/model/domain.hpp"

// The passes over a domain. All of them walk a table of variables. "Multi" is for domains with
// nodes of their own, "Common" for those that share the nodes of pm, whose arrays must then be up
// to date.
namespace variables {

// First output time: decides which variables the data set holds, and writes its first zone. A pm
// that is only read for others writes nothing.
void initMultiTecplot(model::Domain& domain);
void initCommonTecplot(model::Domain& domain);

// Every later output time: one more zone, in which what has no new file is shared with zone 1.
void appendMultiTecplot(model::Domain& domain);
void appendCommonTecplot(model::Domain& domain);

} // namespace variables
