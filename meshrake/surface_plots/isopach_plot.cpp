#include "meshrake/surface_plots/isopach_plot.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/zone.hpp"
#include "meshrake/surface_plots/plot_steps.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/text/utils.hpp"

#include <algorithm>
#include <limits>

namespace surface_plots {

using model::Domain;
using plot_data::Packing;

namespace {

constexpr std::string_view plot = "pm isopach plot";
constexpr const char* arrayName = "top elevation and thickness arrays";

// Returns the number of nodes of a surface element. Triangles have four slots with 0 in the last.
// All elements of olf have the same shape, so the first one decides.
std::int32_t faceNodesOf(const Domain& olf) {
    const bool triangles = olf.nodesPerElement > 3 && olf.elementNodes[3] == 0;
    return triangles ? 3 : olf.nodesPerElement;
}

std::size_t layerCountOf(const Domain& olf, const Domain& pm) {
    return static_cast<std::size_t>(pm.elementCount / olf.elementCount);
}

std::size_t lowerSlotsOf(const Domain& olf, const Domain& pm) {
    return static_cast<std::size_t>(std::min(faceNodesOf(olf), pm.nodesPerElement));
}

// Returns the slot below an upper slot. In the lowest layer its node number is also that of a node
// of olf.
std::size_t surfaceSlot(const Domain& olf, std::size_t upperSlot) {
    return upperSlot - static_cast<std::size_t>(faceNodesOf(olf));
}

[[noreturn]] void badElement(std::size_t element, const std::string& what) {
    error::input_error(std::string(plot) + ": element " + std::to_string(element + 1) + " of " +
                       model::problemFile("elements_pm") + what);
}

// Checks the node numbers that addLayer uses as indices. Elements in zones below 1 are not plotted.
void checkElements(const Domain& olf, const Domain& pm) {
    const auto surface = static_cast<std::size_t>(olf.elementCount);
    const auto slots = static_cast<std::size_t>(pm.nodesPerElement);
    const std::size_t lowerSlots = lowerSlotsOf(olf, pm);
    for (std::size_t p = 0; p < layerCountOf(olf, pm) * surface; ++p) {
        if (pm.elementZone[p] < 1) continue;
        const std::int32_t* nodes = model::slotsOf(pm, p);
        const std::int32_t* first = model::slotsOf(pm, p % surface);
        if (std::any_of(nodes, nodes + slots, [](std::int32_t node) { return node < 1; }))
            badElement(p, " has an unused node slot");
        for (std::size_t j = lowerSlots; j < slots; ++j) {
            const std::int32_t node = first[surfaceSlot(olf, j)];
            if (node < 1 || node > olf.nodeCount)
                badElement(p % surface, " has node " + std::to_string(node) +
                                            ", which is not one of the " +
                                            std::to_string(olf.nodeCount) + " nodes of olf");
        }
    }
}

// Returns the highest element zone of pm. The plot has a zone for each number up to it. A number
// far above the number of elements is from a damaged file, and the plot would fill the disk.
std::int32_t zoneCountOf(const Domain& pm) {
    constexpr std::int32_t most = 100000;
    std::int32_t count = std::numeric_limits<std::int32_t>::min();
    for (const std::int32_t zone : pm.elementZone) count = std::max(count, zone);
    if (count > std::max(most, pm.elementCount))
        error::input_error(std::string(plot) + ": the highest of the zones of pm, " +
                           std::to_string(count) + ", is in " + model::problemFile("elements_pm") +
                           " or a file " + model::problemFile("tv_zone_pm.<index>") +
                           ".\nThe plot would have a zone for each number up to it.");
    return count;
}

void allocate(Isopach& isopach, const Domain& olf) {
    ArrayHelpers::allocateArray(isopach.topElevation, olf.nodeCount, arrayName);
    ArrayHelpers::allocateArray(isopach.zoneThickness, olf.elementCount, arrayName);
}

// Returns one coordinate of the nodes of olf: `own` or, for a common-node olf, which has no
// coordinates, `gathered`, with a copy of the coordinate of its pm nodes.
const std::vector<double>& surfaceCoordinate(const Domain& olf, const std::vector<double>& own,
                                             const std::vector<double>& ofPm,
                                             std::vector<double>& gathered) {
    if (model::hasOwnNodes(olf)) return own;
    ArrayHelpers::allocateArray(gathered, olf.nodeCount, arrayName);
    for (std::size_t i = 0; i < gathered.size(); ++i)
        gathered[i] = ofPm[static_cast<std::size_t>(olf.linkToPm[i] - 1)];
    return gathered;
}

// Adds pm element `p`, which is in the column of surface element `e`.
void addLayer(const Domain& olf, const Domain& pm, std::size_t e, std::size_t p, Isopach& isopach) {
    const auto slots = static_cast<std::size_t>(pm.nodesPerElement);
    const std::int32_t faceNodes = faceNodesOf(olf);
    const std::size_t lowerSlots = lowerSlotsOf(olf, pm);
    const std::int32_t* nodes = model::slotsOf(pm, p);
    const std::int32_t* first = model::slotsOf(pm, e);
    double lowerSum = 0;
    double upperSum = 0;
    for (std::size_t j = 0; j < slots; ++j) {
        const double z = pm.z[static_cast<std::size_t>(nodes[j] - 1)];
        (j < lowerSlots ? lowerSum : upperSum) += z;
        if (j < lowerSlots) continue;
        const std::int32_t node = first[surfaceSlot(olf, j)];
        isopach.topElevation[static_cast<std::size_t>(node - 1)] = z;
    }
    isopach.zoneThickness[e] += upperSum / faceNodes - lowerSum / faceNodes;
}

// Variable numbers, in the order of `variables`.
enum Variable : std::int32_t { x = 1, y, z, thickness };
constexpr std::string_view variables[] = {"X", "Y", "Z(isopach top)", "isopach thickness"};

void writeNodes(Domain& olf, Variable variable, const std::vector<double>& values,
                std::string_view label) {
    const auto& included = model::hasOwnNodes(olf) ? olf.nodeIncluded : olf.domainNodeIncluded;
    plot_data::tecplotWriteArrayReal8(variable, olf.nodeCount, values.data(),
                                      Packing{olf.outputIsPacked, included.data()}, label, olf);
}

void writeThickness(Domain& olf, const Isopach& isopach, std::string_view label) {
    const Packing packing{olf.outputIsPacked, olf.elementIncluded.data()};
    plot_data::tecplotWriteArrayReal8(thickness, olf.elementCount, isopach.zoneThickness.data(),
                                      packing, label, olf);
}

void writeFirstZone(Domain& olf, const Domain& pm, const Isopach& isopach, std::string_view time) {
    plot_data::tecplotVarLocCCAdd(thickness, olf);
    plot_data::tecplotWriteZoneFE("Isopach", time, 0, olf);
    std::vector<double> gathered;
    writeNodes(olf, x, surfaceCoordinate(olf, olf.x, pm.x, gathered), "x");
    writeNodes(olf, y, surfaceCoordinate(olf, olf.y, pm.y, gathered), "y");
    writeNodes(olf, z, isopach.topElevation, "z (isopach top)");
    writeThickness(olf, isopach, "isopach thickness (cell centred)");
    plot_data::tecplotWriteConnectivity(olf);
}

void writeLaterZone(Domain& olf, const Isopach& isopach, std::string_view time) {
    plot_data::tecplotVarLocCCAdd(thickness, olf);
    for (const std::int32_t shared : {x, y}) plot_data::tecplotVarShareAdd(shared, olf);
    plot_data::tecplotWriteZoneFE("Isopach", time, 1, olf);
    writeNodes(olf, z, isopach.topElevation, "z (isopach top)");
    writeThickness(olf, isopach, "isopach thickness");
}

} // namespace

void compute_isopach_structure(std::int32_t zone, const Domain& olf, const Domain& pm,
                               Isopach& isopach) {
    std::fill(isopach.topElevation.begin(), isopach.topElevation.end(), 0.0);
    std::fill(isopach.zoneThickness.begin(), isopach.zoneThickness.end(), 0.0);
    const auto surface = static_cast<std::size_t>(olf.elementCount);
    const std::size_t end = layerCountOf(olf, pm) * surface;
    // Elements of neighbouring columns share nodes, and the element processed last decides the top
    // elevation of a node. The order is fixed: columns by surface element, each from the bottom up.
    for (std::size_t e = 0; e < surface; ++e)
        for (std::size_t p = e; p < end; p += surface)
            if (pm.elementZone[p] == zone) addLayer(olf, pm, e, p, isopach);
}

void plot_pmzone_isopach_structure(Domain& olf, const Domain& pm) {
    checkSurface(olf, plot);
    checkElements(olf, pm);
    const std::int32_t zoneCount = zoneCountOf(pm);
    const int digits = utils::numDigits(zoneCount);
    truncateForPlot(olf, pm);
    Isopach isopach;
    allocate(isopach, olf);

    openPlot(plot, "pm_Isopach", variables, olf);
    // The counter has 64 bits because the highest zone can be the highest 32-bit number. Zone 1 is
    // written even if no element is in a zone.
    for (std::int64_t zone = 1; zone == 1 || zone <= zoneCount; ++zone) {
        const auto number = static_cast<std::int32_t>(zone);
        const std::string time = utils::zeroPaddedIntString(number, digits);
        compute_isopach_structure(number, olf, pm, isopach);
        if (number == 1)
            writeFirstZone(olf, pm, isopach, time);
        else
            writeLaterZone(olf, isopach, time);
    }
    plot_data::tecplotFileClose(olf);
}

} // namespace surface_plots
