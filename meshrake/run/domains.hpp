#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <string_view>

namespace run {

// The domains of a run. At each output time pm is processed first, because the others use its new
// values.
struct Domains {
    model::Domain pm, dual, olf, frac, chan, well, tile;
    model::Domain addition; // only for instructions
};

struct DomainEntry {
    std::string_view tag;
    model::Domain Domains::*domain;
};

// The order of the global node numbers.
inline constexpr DomainEntry creationOrder[] = {
    {"pm", &Domains::pm},     {"dual", &Domains::dual},        {"olf", &Domains::olf},
    {"frac", &Domains::frac}, {"chan", &Domains::chan},        {"well", &Domains::well},
    {"tile", &Domains::tile}, {"addition", &Domains::addition}};

// Returns the domains in the order in which they are read from the control file, processed and
// closed.
std::array<model::Domain*, 7> processingOrder(Domains& domains);

// Creates a domain and reads its mesh. A damaged file ends the run. The domains before it in
// `creationOrder` must have been created.
void createDomain(Domains& domains, const DomainEntry& entry);

// Creates all domains in `creationOrder`.
void createDomains(Domains& domains);

// True if pm is not written but must be read, because a common-node domain is written.
bool pmNeededByCommonNodeDomains(const Domains& domains);

// True if a domain that is written takes its values from the columns of pm.
bool commonNodeDomainsUsePm(const Domains& domains);

// True for a domain that is read at the output times.
bool isProcessed(const model::Domain& domain);

// Selects the nodes and elements of a domain that are written, before its first output time.
void truncate(model::Domain& domain, const model::Domain& pm);

// Process all domains at the first output time and at a later one.
void initAll(Domains& domains);
void appendAll(Domains& domains);

// Closes the data sets of all domains.
void closeAll(Domains& domains);

} // namespace run
