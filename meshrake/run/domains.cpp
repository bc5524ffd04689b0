#include "meshrake/run/domains.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/multi_paraview.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/truncation/common_truncation.hpp"
#include "meshrake/truncation/multi_truncation.hpp"
#include "meshrake/variables/passes.hpp"

#include <algorithm>

namespace run {

using model::Domain;

namespace {

// Writes the mesh and the values of the last zone as a legacy VTK file.
void writeForParaview(Domain& domain) {
    const bool writes = domain.writeDomain.enabled && model::hasOwnNodes(domain);
    if (model::run.paraviewMode && writes) paraview::multiParaview(domain);
}

void init(Domain& domain, const Domain& pm) {
    if (!isProcessed(domain)) return;
    truncate(domain, pm);
    variables::initTecplot(domain);
    writeForParaview(domain);
}

void append(Domain& domain) {
    if (!isProcessed(domain)) return;
    variables::appendTecplot(domain);
    writeForParaview(domain);
}

} // namespace

std::array<Domain*, 7> processingOrder(Domains& d) {
    return {&d.pm, &d.dual, &d.frac, &d.olf, &d.well, &d.chan, &d.tile};
}

void createDomain(Domains& d, const DomainEntry& entry) {
    model::domainCreate(d.*entry.domain, entry.tag, d.pm);
    if (entry.domain == &Domains::pm) d.pm.couplingScheme = 1;
}

void createDomains(Domains& d) {
    for (const DomainEntry& entry : creationOrder) createDomain(d, entry);
}

bool isProcessed(const Domain& domain) {
    return domain.exists && (domain.writeDomain.enabled || model::isReadButNotWritten(domain));
}

void truncate(Domain& domain, const Domain& pm) {
    if (model::hasOwnNodes(domain))
        truncation::multiTruncate(domain, pm);
    else
        truncation::commonTruncate(domain, pm);
}

bool pmNeededByCommonNodeDomains(const Domains& d) {
    if (d.pm.writeDomain.enabled) return false;
    // dual does not count, on purpose: a common-node dual then has no columns of pm.
    const Domain* others[] = {&d.frac, &d.olf, &d.well, &d.tile, &d.chan};
    return std::any_of(std::begin(others), std::end(others), [](const Domain* domain) {
        return domain->couplingScheme == 0 && domain->writeDomain.enabled;
    });
}

bool commonNodeDomainsUsePm(const Domains& d) {
    const Domain* others[] = {&d.dual, &d.frac, &d.olf, &d.well, &d.tile, &d.chan};
    return std::any_of(std::begin(others), std::end(others), [](const Domain* domain) {
        return isProcessed(*domain) && !model::hasOwnNodes(*domain);
    });
}

void initAll(Domains& domains) {
    for (Domain* domain : processingOrder(domains)) init(*domain, domains.pm);
}

void appendAll(Domains& domains) {
    for (Domain* domain : processingOrder(domains)) append(*domain);
}

void closeAll(Domains& domains) {
    for (Domain* domain : processingOrder(domains)) plot_data::tecplotFileClose(*domain);
}

} // namespace run
