#include "meshrake/model/domain.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/mesh_reading.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <iterator>

namespace model {

namespace {

DomainSet tagOf(std::string_view name) {
    const auto* found = std::ranges::find(tags::names, name, &tags::TagName::name);
    return found == std::end(tags::names) ? 0 : found->tag;
}

void buildLabels(Domain& domain) {
    domain.writeDomain = {"write " + domain.name + " domain file", true};
    for (const OptionRow& row : optionTable)
        optionOf(domain, row.option) = {optionLabel(row, domain.name), true};
}

} // namespace

DomainOption& optionOf(Domain& domain, Option option) {
    return domain.options[static_cast<std::size_t>(option)];
}

const DomainOption& optionOf(const Domain& domain, Option option) {
    return domain.options[static_cast<std::size_t>(option)];
}

bool enabled(const Domain& domain, Option option) {
    return option == Option::none || optionOf(domain, option).enabled;
}

bool hasOwnNodes(const Domain& domain) {
    return domain.couplingScheme == 1;
}

bool isReadButNotWritten(const Domain& domain) {
    return domain.tag == tags::pm && run.pmPassRequired && !domain.writeDomain.enabled;
}

const OutputVar* findOutputVar(const Domain& domain, std::string_view key) {
    const auto it = std::find_if(domain.outputVars.begin(), domain.outputVars.end(),
                                 [&](const OutputVar& v) { return v.key == key; });
    return it == domain.outputVars.end() ? nullptr : &*it;
}

OutputVar& outputVar(Domain& domain, std::string_view key) {
    const OutputVar* found = findOutputVar(domain, key);
    if (!found) error::fatalError("Unknown output variable: " + std::string(key));
    return domain.outputVars[static_cast<std::size_t>(found - domain.outputVars.data())];
}

void domainCreate(Domain& domain, std::string_view tag, const Domain& pm) {
    if (tagOf(tag) == tags::addition) {
        domain.name = tag;
        domain.tag = tags::addition;
        domain.exists = true;
        return;
    }
    domain.exists = file_units::exists(problemFile("coordinates_" + std::string(tag)));
    if (!domain.exists) return;
    domain.name = tag;
    domain.tag = tagOf(tag);
    domain.pmReference = &pm;
    domain.tecplotUnit = file_units::getUnit();
    buildLabels(domain);
    coordsRead(domain, pm);
    elemsRead(domain, pm);
}

} // namespace model
