#include "meshrake/model/mesh_reading.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "tvncommon/io/file_units.hpp"

#include <algorithm>
#include <limits>

namespace model {

namespace {

// Tests all numbers first, and searches for the invalid one only if there is one. The loop of the
// test has no exit, so that the compiler uses vector instructions.
void checkNodeNumbers(int unit, const Domain& domain, const Domain& pm) {
    const std::int32_t lowest =
        domain.tag == tags::pm ? 0 : std::numeric_limits<std::int32_t>::min();
    const std::int32_t highest = pm.nodeCount;
    const auto isBad = [=](std::int32_t node) { return node > highest || node < lowest; };
    const std::vector<std::int32_t>& nodes = domain.elementNodes;
    std::int32_t bad = 0;
    for (const std::int32_t node : nodes) bad |= isBad(node);
    if (bad)
        file_units::badContents(unit, "An element has pm node " +
                                          std::to_string(*std::ranges::find_if(nodes, isBad)) +
                                          ", which is not in the mesh");
}

// An element in zone 0 is outside the dual continuum.
void dropElementsOfZone0(Domain& domain) {
    const auto slots = static_cast<std::size_t>(domain.nodesPerElement);
    std::size_t kept = 0;
    for (std::size_t e = 0; e < domain.elementZone.size(); ++e) {
        if (domain.elementZone[e] == 0) continue;
        const auto from = domain.elementNodes.begin() + static_cast<std::ptrdiff_t>(e * slots);
        std::copy(from, from + static_cast<std::ptrdiff_t>(slots),
                  domain.elementNodes.begin() + static_cast<std::ptrdiff_t>(kept * slots));
        domain.elementZone[kept++] = domain.elementZone[e];
    }
    domain.elementCount = static_cast<std::int32_t>(kept);
}

void readWallLayers(int unit, const Domain& olf) {
    const std::string name = "Overland flow wall node element array";
    file_units::readArray(unit, olf.elementCount, run.wallElementLayer, name);
    run.wallsPresent = file_units::readLogical(unit);
    if (run.wallsPresent) file_units::readArray(unit, olf.elementCount, run.wallElementLayer, name);
}

void readFractures(int unit, Domain& frac) {
    const std::string name = "Fracture element arrays";
    file_units::readArray(unit, 2 * std::int64_t{frac.elementCount}, frac.fractureLink, name);
    file_units::readArray(unit, frac.elementCount, frac.fractureAperture, name);
}

std::string zoneTypeOf(const Domain& domain) {
    switch (domain.nodesPerElement) {
    case 2:
        return "FELINESEG";
    case 3:
    case 4:
        return (domain.tag & (tags::pm | tags::dual)) != 0 ? "FETETRAHEDRON" : "FEQUADRILATERAL";
    case 6:
    case 8:
        return "FEBRICK";
    default:
        return "";
    }
}

} // namespace

void elemsRead(Domain& domain, const Domain& pm) {
    const stages::Scope stage(stages::Stage::mesh);
    const std::string name = problemFile("elements_" + domain.name);
    write_string("Elements file: " + name);
    const int unit = file_units::openRecordsRead(name);
    domain.nodesPerElement = file_units::readInteger(unit);
    domain.elementCount = file_units::readInteger(unit);
    const std::string arrays = domain.name + " element arrays";
    if (domain.nodesPerElement < 0)
        file_units::badContents(unit, "The number of nodes per element is negative");
    file_units::checkCount(unit, domain.elementCount, 4, "elements");
    file_units::readArray(unit, std::int64_t{domain.nodesPerElement} * domain.elementCount,
                          domain.elementNodes, arrays);
    file_units::readArray(unit, domain.elementCount, domain.elementZone, arrays);
    checkNodeNumbers(unit, domain, pm);
    if (domain.tag == tags::dual) dropElementsOfZone0(domain);
    if (domain.tag == tags::olf) readWallLayers(unit, domain);
    if (domain.tag == tags::frac) readFractures(unit, domain);
    file_units::freeUnit(unit);
    write_string("  Number of elements " + std::to_string(domain.elementCount));
    write_string("  Done reading elements file");
    domain.zoneType = zoneTypeOf(domain);
}

} // namespace model
