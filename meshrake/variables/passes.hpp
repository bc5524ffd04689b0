#pragma once

#include "meshrake/plot_data/variable_io.hpp"

#include <cstddef>
#include <span>

// A pass processes the rows of a domain's variable table at one output time. pm must have completed
// its pass of the output time before the domains on the common-node scheme.
namespace variables {

// First output time: decides which variables the data set has, opens it and writes zone 1. Writes
// nothing for a pm that is read only because common-node domains take their values from it.
void initTecplot(model::Domain& domain);

// Later output times: adds a zone, which shares variables without a file at this output time with
// zone 1.
void appendTecplot(model::Domain& domain);

// The table of the domain's coupling scheme: all variables that it may have.
std::span<const plot_data::VariableRow> tableOf(const model::Domain& domain);

// The steps of the two passes, in their order; `i` is a row of the table. Rows that do not apply to
// the domain or that its options disable have no effect.
//
//   First output time:  beginDataSet; declareVariable for each row; writeFirstZone.
//   Later ones:         beginLaterZone; readVariable for each row, those with `sharedLast` last;
//                       writeLaterZone.
void beginDataSet(model::Domain& domain);
void declareVariable(model::Domain& domain, std::size_t i);
void writeFirstZone(model::Domain& domain);
void beginLaterZone(model::Domain& domain);
void readVariable(model::Domain& domain, std::size_t i);
void writeLaterZone(model::Domain& domain);

} // namespace variables
