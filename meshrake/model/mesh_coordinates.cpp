#include "meshrake/model/mesh_reading.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "tvncommon/io/file_units.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace model {

namespace {

constexpr std::int64_t bytesPerNode = 24; // x, y and z

// Nodes of a vertical column differ in x and y by less than this, in the length unit.
constexpr double columnTolerance = 1.0e-5;

void allocateCoordinates(Domain& domain) {
    ArrayHelpers::allocateArray(domain.x, domain.nodeCount, "coordinate arrays");
    ArrayHelpers::allocateArray(domain.y, domain.nodeCount, "coordinate arrays");
    ArrayHelpers::allocateArray(domain.z, domain.nodeCount, "coordinate arrays");
}

// The file has x, y and z of each node together. They are separated block by block, so that the
// coordinates are in memory only once.
void readCoordinates(int unit, Domain& domain) {
    constexpr std::int32_t blockNodes = 8192;
    std::vector<double> block(3 * blockNodes);
    file_units::beginRecord(unit);
    for (std::int32_t first = 0; first < domain.nodeCount; first += blockNodes) {
        const std::int32_t n = std::min(blockNodes, domain.nodeCount - first);
        file_units::readInRecord(unit, block.data(), n * bytesPerNode);
        for (std::int32_t i = 0; i < n; ++i) {
            const auto node = static_cast<std::size_t>(first + i);
            const double* xyz = block.data() + 3 * static_cast<std::size_t>(i);
            domain.x[node] = xyz[0];
            domain.y[node] = xyz[1];
            domain.z[node] = xyz[2];
        }
    }
    file_units::endRecord(unit);
}

std::int32_t deriveSheetCount(const Domain& pm) {
    std::int32_t sheets = 1;
    for (std::size_t i = 1; i < pm.x.size(); ++i)
        if (std::abs(pm.x[i] - pm.x[0]) < columnTolerance &&
            std::abs(pm.y[i] - pm.y[0]) < columnTolerance)
            ++sheets;
    return sheets;
}

void readPmCoordinates(int unit, Domain& domain) {
    file_units::checkCount(unit, domain.nodeCount, bytesPerNode, "nodes");
    allocateCoordinates(domain);
    readCoordinates(unit, domain);
    std::int32_t counts[3] = {};
    file_units::readRecord(unit, counts, sizeof counts);
    run.gridCountA = counts[0];
    run.gridCountB = counts[1];
    run.sheetCount = counts[2];
    if (run.sheetCount < 0) file_units::badContents(unit, "The number of node sheets is negative");
    file_units::freeUnit(unit);
    domain.nodeOffset = 0;
    run.totalNodes = domain.nodeCount;
    write_string("  Done reading coordinates");
    if (run.sheetCount == 0) run.sheetCount = deriveSheetCount(domain);
}

void readWalls(int unit, const Domain& olf) {
    run.wallsPresent = file_units::readLogical(unit);
    if (!run.wallsPresent) return;
    run.wallCountA = file_units::readInteger(unit);
    run.wallLayers = file_units::readInteger(unit);
    if (run.wallLayers < 0) file_units::badContents(unit, "The number of wall layers is negative");
    const std::int64_t nodes = olf.nodeCount;
    file_units::readArray(unit, nodes, run.wallNodeFlag, "olf wall arrays");
    for (std::int32_t& flag : run.wallNodeFlag) flag &= 1; // the lowest bit is the logical value
    file_units::readArray(unit, nodes * run.wallLayers, run.wallNodeTable, "olf wall arrays");
    file_units::readArray(unit, nodes, run.wallNodeValue, "olf wall arrays");
}

// Links are used later without a check of their range.
void checkLinks(int unit, const Domain& domain, const Domain& pm) {
    for (const std::int32_t node : domain.linkToPm)
        if (node < 1 || node > pm.nodeCount)
            file_units::badContents(unit, "A node is linked to pm node " + std::to_string(node) +
                                              ", which is not in the mesh");
    if (!hasOwnNodes(domain)) return;
    const std::int64_t last = std::int64_t{domain.nodeOffset} + domain.nodeCount;
    for (const std::int32_t node : domain.linkFromPm)
        if (node > 0 && (node <= domain.nodeOffset || node > last))
            file_units::badContents(unit, "A pm node is linked to global node " +
                                              std::to_string(node) +
                                              ", which is not in this domain");
}

void copyCoordinatesFromPm(Domain& domain, const Domain& pm) {
    allocateCoordinates(domain);
    for (std::size_t i = 0; i < domain.linkToPm.size(); ++i) {
        const auto node = static_cast<std::size_t>(domain.linkToPm[i] - 1);
        domain.x[i] = pm.x[node];
        domain.y[i] = pm.y[node];
        domain.z[i] = pm.z[node];
    }
}

void readLinkedNodes(int unit, Domain& domain, const Domain& pm) {
    domain.couplingScheme = file_units::readInteger(unit);
    file_units::readArray(unit, domain.nodeCount, domain.linkToPm, "link arrays");
    file_units::readArray(unit, pm.nodeCount, domain.linkFromPm, "link arrays");
    if (domain.tag == tags::olf) readWalls(unit, domain);
    domain.nodeOffset = hasOwnNodes(domain) ? run.totalNodes : 0;
    constexpr std::int32_t maximumNodes = std::numeric_limits<std::int32_t>::max();
    if (hasOwnNodes(domain) && domain.nodeCount > maximumNodes - run.totalNodes)
        file_units::badContents(unit, "The global number of nodes is beyond 2147483647");
    checkLinks(unit, domain, pm);
    file_units::freeUnit(unit);
    write_string("  Done reading coordinates");
    if (!hasOwnNodes(domain)) {
        write_string("  Using common-node coupling scheme");
        return;
    }
    write_string("  Using multi-node coupling scheme");
    copyCoordinatesFromPm(domain, pm);
    run.totalNodes += domain.nodeCount;
}

} // namespace

void coordsRead(Domain& domain, const Domain& pm) {
    const stages::Scope stage(stages::Stage::mesh);
    const std::string name = problemFile("coordinates_" + domain.name);
    write_string("Coordinates file: " + name);
    const int unit = file_units::openRecordsRead(name);
    domain.nodeCount = file_units::readInteger(unit);
    file_units::checkCount(unit, domain.nodeCount, 4, "nodes");
    write_string("  Number of nodes " + std::to_string(domain.nodeCount));
    if (domain.tag == tags::pm)
        readPmCoordinates(unit, domain);
    else
        readLinkedNodes(unit, domain, pm);
}

} // namespace model
