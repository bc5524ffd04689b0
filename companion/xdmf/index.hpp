#pragma once

#include "companion/xdmf/grid.hpp"

#include <string>
#include <vector>

namespace xdmf {

// Returns the text of an XDMF index, version 2, over one or several data sets. The values stay in
// the data sets; the index has their positions.
//
// A data set is a temporal collection of its zones, several are a spatial collection of these. So a
// block has the same name at all times; the children of a temporal collection would be renamed by
// readers. Each block has all output times of all data sets, in increasing order, with an empty
// collection where it has no zone with nodes. Zones without a time are shown at all times.
//
// Throws std::runtime_error if no zone has nodes, for a time that is not finite, and for
// coordinates that are not at the nodes.
std::string indexOf(const std::vector<Block>& blocks);

} // namespace xdmf
