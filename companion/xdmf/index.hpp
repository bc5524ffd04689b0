#pragma once

#include "companion/xdmf/grid.hpp"

#include <string>
#include <vector>

namespace xdmf {

// Returns the text of an XDMF index, version 2, of one or several data sets. The index has the
// positions of the values, which remain in the data sets.
//
// A data set is a temporal collection of its zones. Several data sets are a spatial collection of
// these, so that a block has the same name at all times. Readers would rename the children of a
// temporal collection. Each block has all output times of all data sets, in increasing order, with
// an empty collection at those without a zone with nodes. Zones without a time are shown at all
// times.
//
// Throws std::runtime_error if no zone has nodes, for a time that is not finite, and for
// coordinates that are not at the nodes.
std::string indexOf(const std::vector<Block>& blocks);

} // namespace xdmf
