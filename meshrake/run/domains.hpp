#pragma once

#include "meshrake/model/domain.hpp"

#include <array>

namespace run {

// The domains of a run. At each output time pm is processed first, because the others use its new
// values.
struct Domains {
    model::Domain pm, dual, olf, frac, chan, well, tile;
    model::Domain addition; // only for instructions
};

// Returns the domains in the order in which they are read from the control file, processed and
// closed.
std::array<model::Domain*, 7> processingOrder(Domains& domains);

// Creates all domains and reads their meshes, in the order of the global node numbers.
void createDomains(Domains& domains);

// True if pm is not written but must be read, because a common-node domain is written.
bool pmNeededByCommonNodeDomains(const Domains& domains);

// Process all domains at the first output time and at a later one.
void initAll(Domains& domains);
void appendAll(Domains& domains);

// Closes the data sets of all domains.
void closeAll(Domains& domains);

} // namespace run
