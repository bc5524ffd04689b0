#pragma once

#include "meshrake/model/domain.hpp"

#include <array>

namespace run {

// The domains of a run. At each output time pm is processed first; the others see its new values.
struct Domains {
    model::Domain pm, dual, olf, frac, chan, well, tile;
    model::Domain addition; // only for instructions
};

// The order in which domains are read from the control file, processed and closed.
std::array<model::Domain*, 7> processingOrder(Domains& domains);

// Reads the mesh of all domains, in the order of the global node numbers.
void createDomains(Domains& domains);

// True if pm must be read although it is not written: a common-node domain is.
bool pmNeededByCommonNodeDomains(const Domains& domains);

// Process the first output time, and a later one, of all domains.
void initAll(Domains& domains);
void appendAll(Domains& domains);

// Closes the data sets of all domains.
void closeAll(Domains& domains);

} // namespace run
