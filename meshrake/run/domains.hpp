#pragma once

#include "meshrake/model/domain.hpp"

#include <array>

namespace run {

// The domains of a run. Others see pm as it is after its own step of the same output time.
struct Domains {
    model::Domain pm, dual, olf, frac, chan, well, tile;
    model::Domain addition; // carries commands only
};

// The order in which domains are read from the control file, passed through and closed.
std::array<model::Domain*, 7> processingOrder(Domains& domains);

// Reads the mesh of all domains, in the order that numbers their nodes.
void createDomains(Domains& domains);

// True if pm is not written, but a domain on the common-node scheme is: pm must then be read for
// it.
bool pmNeededByCommonNodeDomains(const Domains& domains);

// First and later output times of all domains.
void initAll(Domains& domains);
void appendAll(Domains& domains);

void closeAll(Domains& domains);

} // namespace run
