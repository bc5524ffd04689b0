#include "companion/check/observations.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/element_search.hpp"
#include "meshrake/observation_compare/observation_files.hpp"
#include "meshrake/observation_compare/shape_cache.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/search/ElementSearch.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>

namespace check {

using model::Domain;
using model::run;

namespace {

// A comparison with a file of observations.
struct Comparison {
    bool model::RunState::*isRequested;
    std::string_view instruction;
    std::string_view table; // ending of the file of observations
    bool inSpace;           // observations have a z
    bool ofSurface;         // of olf, otherwise of pm
    bool hasRanges;         // only observations inside ranges are compared
    bool ofWaterTable;      // needs depths to the water table, otherwise heads
};
constexpr Comparison comparisons[] = {
    {&model::RunState::compareHeads, "compare heads 3d domain", "observed_heads", true, false, true,
     false},
    {&model::RunState::compareWaterTable, "compare gw table elevation", "observed_heads", false,
     false, false, true},
    {&model::RunState::compareDepthToTable, "compare depth to gw table", "observed_d2gwt", false,
     false, false, true},
    {&model::RunState::compareSurfaceDepth, "compare surface water depth", "observed_heads_olf",
     false, true, true, false}};

Finding findingAt(const Work& work, std::string_view kind, const Comparison& comparison) {
    Finding finding{.kind = kind};
    const auto line = work.requestLines.find(std::string(comparison.instruction));
    if (line == work.requestLines.end()) return finding;
    finding.file = line->second.file;
    finding.line = line->second.number;
    return finding;
}

void add(Work& work, Finding finding, std::string text, bool endsRun) {
    finding.text = std::move(text);
    finding.endsRun = endsRun;
    work.report.findings.push_back(std::move(finding));
}

bool hasVariable(const Domain& domain, std::string_view key) {
    const model::OutputVar* var = domain.exists ? model::findOutputVar(domain, key) : nullptr;
    return var && var->firstExists;
}

// Elements of four nodes have depths to the water table from the second output time on.
bool hasWaterTable(const Work& work, const Domain& pm) {
    const auto written = std::ranges::count(work.report.times, true, &TimeReport::isWritten);
    return hasVariable(pm, "depth2gwt") && (pm.nodesPerElement != 4 || written > 1);
}

void checkResults(Work& work, const Comparison& comparison, const Domain& domain) {
    const bool hasResults =
        comparison.ofWaterTable ? hasWaterTable(work, domain) : hasVariable(domain, "head");
    const std::string tag = comparison.ofSurface ? "olf" : "pm";
    if (!hasResults)
        add(work, findingAt(work, "no_results", comparison),
            std::string("the comparison needs ") +
                (comparison.ofWaterTable ? "Depth2GWT" : "Head") + " of " + tag +
                ", which the run does not have",
            true);
    else if (comparison.ofSurface && !model::hasOwnNodes(domain))
        add(work, findingAt(work, "no_results", comparison),
            "the comparison needs an olf with nodes of its own", true);
}

// `range` has a least and a greatest value.
bool isWithin(double value, const double* range) {
    return range[0] <= value && value <= range[1];
}

bool isInRanges(const Comparison& comparison, std::size_t i) {
    const model::ObservationSet& set = run.observations;
    const double* r = run.compareWindow.data();
    return !comparison.hasRanges || (isWithin(set.obsX[i], r) && isWithin(set.obsY[i], r + 2) &&
                                     isWithin(set.obsZ[i], r + 4));
}

// Whether a mesh contains a point, in space or in plan.
using Contains = std::function<bool(double x, double y, double z)>;

bool isLayered(const Domain& pm) {
    const std::int32_t layers = run.sheetCount - 1;
    return layers > 0 && pm.elementCount > 0 && pm.elementCount % layers == 0 &&
           (pm.nodesPerElement == 6 || pm.nodesPerElement == 8);
}

// In a mesh of bricks heads are interpolated in the element that contains the observation.
bool isInterpolated(const Comparison& comparison) {
    return run.meshNodesPerElement == 8 && comparison.inSpace;
}

// The search of the run, which goes by the boxes of the elements.
Contains interpolates(const Domain& pm) {
    const auto search = std::make_shared<observation_compare::ElementSearch>();
    observation_compare::prepare(*search, pm);
    return [search](double x, double y, double z) {
        return observation_compare::containingElement(*search, {x, y, z}) > 0;
    };
}

// Least and greatest coordinate. Without nodes, no value is within them.
std::array<double, 2> rangeOf(const std::vector<double>& coordinates) {
    if (coordinates.empty()) return {0, -1};
    const auto [least, greatest] = std::ranges::minmax(coordinates);
    return {least, greatest};
}

// In a mesh without layers of prisms or bricks, the box of all nodes is tested.
Contains containsOf(const Domain& pm, bool inSpace) {
    if (!isLayered(pm)) {
        const std::array box{rangeOf(pm.x), rangeOf(pm.y), rangeOf(pm.z)};
        return [box, inSpace](double x, double y, double z) {
            return isWithin(x, box[0].data()) && isWithin(y, box[1].data()) &&
                   (!inSpace || isWithin(z, box[2].data()));
        };
    }
    ElementSearch::reset();
    ElementSearch::initElementSearch(pm.elementCount, pm.elementCount / (run.sheetCount - 1),
                                     pm.nodesPerElement, run.sheetCount, pm.elementNodes, pm.x,
                                     pm.y, pm.z);
    ElementSearch::setErrorCallback([](std::string_view) {});
    if (inSpace)
        return
            [](double x, double y, double z) { return ElementSearch::findElement3D(x, y, z) > 0; };
    return
        [](double x, double y, double) { return ElementSearch::findElement2DUnchecked(x, y) > 0; };
}

void checkPositions(Work& work, const Comparison& comparison, const std::string& file) {
    const model::ObservationSet& set = run.observations;
    const Domain& pm = work.domains.pm;
    const Contains contains =
        isInterpolated(comparison) ? interpolates(pm) : containsOf(pm, comparison.inSpace);
    std::vector<std::int32_t> outside;
    std::size_t compared = 0;
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        if (!isInRanges(comparison, i)) continue;
        ++compared;
        if (!contains(set.obsX[i], set.obsY[i], set.obsZ[i]))
            outside.push_back(static_cast<std::int32_t>(i + 1));
    }
    if (compared == 0)
        add(work, findingAt(work, "empty_comparison", comparison),
            "no observation of " + file + " is compared", false);
    if (outside.empty()) return;
    const bool isOne = outside.size() == 1;
    add(work, {.kind = "outside_mesh", .file = file},
        (isOne ? "observation " : "observations ") + rangesText(outside) + " of \"" +
            std::string(comparison.instruction) + "\"" + (isOne ? " is" : " are") +
            " outside the mesh, but compared " +
            (isInterpolated(comparison) ? "with a simulated value of 0" : "at the nearest node"),
        false);
}

// The elements of the observations are taken from a file of an earlier run, if there is one.
void checkStoredElements(Work& work, const std::string& file) {
    const std::string stored = model::problemFile("ObsShape.txt");
    bool exists = false;
    if (!tryStep(work, {.kind = "observations"}, [&] { exists = file_units::exists(stored); }) ||
        !exists)
        return;
    const Domain& pm = work.domains.pm;
    if (!tryStep(work, {.kind = "observations"},
                 [&] { observation_compare::obs_points_shape(pm); }))
        return;
    const model::ObservationSet& set = run.observations;
    observation_compare::ElementSearch search;
    observation_compare::prepare(search, pm);
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        const std::int32_t element =
            observation_compare::containingElement(search, {set.obsX[i], set.obsY[i], set.obsZ[i]});
        if ((element > 0 ? element : -1) == set.obsElement[i]) continue;
        return add(work, {.kind = "old_elements", .file = stored},
                   "an earlier run wrote it for other observations or another mesh than those of " +
                       file + "; delete it",
                   false);
    }
}

// Each observation is compared in the element with its own number.
void checkElementNumbers(Work& work, const Comparison& comparison, const std::string& file) {
    const auto elements = static_cast<std::size_t>(work.domains.pm.elementCount);
    const model::ObservationSet& set = run.observations;
    for (std::size_t i = elements; i < set.obsX.size(); ++i)
        if (isInRanges(comparison, i) && set.obsElement[i] != -1)
            return add(work, {.kind = "observations", .file = file},
                       "observation " + std::to_string(i + 1) +
                           " has no element of the same number, pm has only " +
                           std::to_string(elements),
                       true);
}

} // namespace

void checkObservations(Work& work) {
    for (const Comparison& comparison : comparisons) {
        if (!(run.*comparison.isRequested)) continue;
        const Domain& domain = comparison.ofSurface ? work.domains.olf : work.domains.pm;
        checkResults(work, comparison, domain);
        const std::string table(comparison.table);
        const std::string file = model::fileName(run.problemPrefix + "." + table);
        if (!tryStep(work, findingAt(work, "observations", comparison), [&] {
                observation_compare::readObservations(table, table, comparison.inSpace);
            }))
            continue;
        if (isInterpolated(comparison)) {
            checkStoredElements(work, file);
            checkElementNumbers(work, comparison, file);
        }
        checkPositions(work, comparison, file);
    }
    ElementSearch::reset();
}

} // namespace check
