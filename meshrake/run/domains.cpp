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
    if (model::run.paraviewMode && domain.writeDomain.enabled) paraview::multiParaview(domain);
}

void init(Domain& domain, const Domain& pm) {
    if (!domain.exists) return;
    if (domain.writeDomain.enabled && !model::hasOwnNodes(domain)) {
        truncation::commonTruncate(domain, pm);
        variables::initCommonTecplot(domain);
    } else if (domain.writeDomain.enabled || model::isReadButNotWritten(domain)) {
        truncation::multiTruncate(domain, pm);
        variables::initMultiTecplot(domain);
        writeForParaview(domain);
    }
}

void append(Domain& domain) {
    if (!domain.exists) return;
    if (domain.writeDomain.enabled && !model::hasOwnNodes(domain)) {
        variables::appendCommonTecplot(domain);
    } else if (domain.writeDomain.enabled || model::isReadButNotWritten(domain)) {
        variables::appendMultiTecplot(domain);
        writeForParaview(domain);
    }
}

} // namespace

std::array<Domain*, 7> processingOrder(Domains& d) {
    return {&d.pm, &d.dual, &d.frac, &d.olf, &d.well, &d.chan, &d.tile};
}

void createDomains(Domains& d) {
    model::domainCreate(d.pm, "pm", d.pm);
    d.pm.couplingScheme = 1;
    model::domainCreate(d.dual, "dual", d.pm);
    model::domainCreate(d.olf, "olf", d.pm);
    model::domainCreate(d.frac, "frac", d.pm);
    model::domainCreate(d.chan, "chan", d.pm);
    model::domainCreate(d.well, "well", d.pm);
    model::domainCreate(d.tile, "tile", d.pm);
    model::domainCreate(d.addition, "addition", d.pm);
}

bool pmNeededByCommonNodeDomains(const Domains& d) {
    if (d.pm.writeDomain.enabled) return false;
    // dual does not count, on purpose: a common-node dual then has no columns of pm.
    const Domain* others[] = {&d.frac, &d.olf, &d.well, &d.tile, &d.chan};
    return std::any_of(std::begin(others), std::end(others), [](const Domain* domain) {
        return domain->couplingScheme == 0 && domain->writeDomain.enabled;
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
