#include "meshrake/observation_compare/comparisons.hpp"

#include "meshrake/derived_columns/topography.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/comparison_files.hpp"
#include "meshrake/observation_compare/node_search.hpp"
#include "meshrake/observation_compare/shape_functions.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>

namespace observation_compare {

using box_tree::Point;
using model::Domain;
using model::run;

namespace {

[[noreturn]] void resultMissing(const Domain& domain, std::string_view result,
                                std::string_view more) {
    error::input_error("The comparison with observations needs " + std::string(result) +
                       " of the " + domain.name +
                       " domain, which the run did not make.\nIt takes a file " +
                       model::problemFile("head_" + domain.name + ".<index>") +
                       " of an output time in the time window and no line \"no " + domain.name +
                       " heads\"" + std::string(more));
}

// Returns a column of a variable, null if the run does not have it.
const model::Column* columnOf(const Domain& domain, std::string_view key, std::size_t column) {
    const model::OutputVar* var = model::findOutputVar(domain, key);
    return var && var->firstExists && column < var->columns.size() ? &var->columns[column]
                                                                   : nullptr;
}

// Simulated values of all nodes: heads of pm or water depths of olf. The other pointer is null.
struct NodeValues {
    const std::vector<double>* heads = nullptr;
    const std::vector<float>* depths = nullptr;
};

NodeValues nodeValues(const Domain& domain) {
    const bool isPm = domain.tag == model::tags::pm;
    const model::Column* column = columnOf(domain, "head", isPm ? 0 : 1);
    NodeValues values;
    if (isPm) {
        if (!column) resultMissing(domain, "Head", ".");
        values.heads = &column->real8;
    } else {
        if (!column || !model::hasOwnNodes(domain))
            resultMissing(domain, "Depth", ",\nand the domain has to have nodes of its own.");
        values.depths = &column->real4;
    }
    return values;
}

double valueAt(const NodeValues& values, std::int32_t node) {
    if (node < 1) return 0;
    const auto i = static_cast<std::size_t>(node - 1);
    return values.heads ? (*values.heads)[i] : static_cast<double>((*values.depths)[i]);
}

bool isCompared(std::size_t i) {
    const model::ObservationSet& set = run.observations;
    const double* window = run.compareWindow.data();
    const auto within = [](double v, const double* bounds) {
        return bounds[0] <= v && v <= bounds[1];
    };
    return set.obsElement[i] != -1 && within(set.obsX[i], window) &&
           within(set.obsY[i], window + 2) && within(set.obsZ[i], window + 4);
}

void checkElements(const Domain& pm) {
    const auto elements = static_cast<std::size_t>(pm.elementCount);
    for (std::size_t i = elements; i < run.observations.obsX.size(); ++i)
        if (isCompared(i))
            error::input_error("Comparison of heads: observation " + std::to_string(i + 1) +
                               " takes part, but pm has only " + std::to_string(elements) +
                               " elements.\nIn a mesh of bricks each observation goes by the nodes "
                               "of the element of its own number.");
}

// Uses the nodes of the element with the observation's number, whichever element contains it.
double interpolated(const Domain& pm, const NodeValues& values, std::size_t i) {
    const std::int32_t* slots = model::slotsOf(pm, i);
    const auto slotCount = static_cast<std::size_t>(pm.nodesPerElement);
    Shape nodal{};
    for (std::size_t k = 0; k < std::min(slotCount, nodal.size()); ++k)
        nodal[k] = valueAt(values, slots[k]);
    Shape shape;
    std::copy_n(run.observations.obsShape.begin() + static_cast<std::ptrdiff_t>(8 * i),
                shape.size(), shape.begin());
    return dfe_interp(nodal, shape);
}

ComparisonTexts headTexts(const Domain& domain) {
    const bool isPm = domain.tag == model::tags::pm;
    ComparisonTexts texts;
    texts.plotFile = isPm ? "compare_heads.dat" : "compare_swdepth_olf.dat";
    texts.scatterFile = isPm ? "compare_heads_scatter.dat" : "compare_swdepth_scatter_olf.dat";
    texts.observed = isPm ? "Observed head" : "Observed depth olf";
    texts.simulated = isPm ? "Simulated head" : "Simulated depth olf";
    texts.scatterTitle = "Title = \"Observed vs simulated heads scatter plot\"";
    texts.dataZone = "data";
    texts.lastZone = "Zone";
    return texts;
}

ComparisonTexts tableTexts() {
    ComparisonTexts texts;
    texts.dataZone = StringHelpers::trimRight(run.lastTimeText);
    texts.lastZone = "ZONE";
    return texts;
}

const std::vector<double>& depthsToTable(const Domain& domain) {
    const model::Column* column = columnOf(domain, "depth2gwt", 0);
    // A mesh of tetrahedra has the variable, but no values at the first output time.
    if (!column || column->real8.size() != static_cast<std::size_t>(domain.nodeCount))
        resultMissing(
            domain, "Depth2GWT",
            "\nor \"no pm depth to water table\"; elements of four nodes have it from the "
            "second output time on.");
    return column->real8;
}

// Compares at the top nodes of the columns. The simulated value is the depth to the water table or,
// if `surface` has the elevations of all nodes, the elevation of the water table.
void compareColumns(const Domain& domain, const ComparisonTexts& texts,
                    const std::vector<double>* surface) {
    const std::vector<double>& depths = depthsToTable(domain);
    const model::ObservationSet& set = run.observations;
    const std::vector<std::int32_t> columns =
        nearestNodes({.domain = domain, .count = sheetNodes(domain), .inPlan = true}, set.obsX,
                     set.obsY, set.obsZ);
    const std::vector<std::int32_t> tops = columnTops(domain);
    Comparison comparison = openComparison(texts);
    plot_data::TextBlock echo = plot_data::beginBlock(run.echoUnit);
    std::int32_t node = 0;
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        const std::int32_t column = columns[i];
        find_top_surface_node_from_xy({set.obsX[i], set.obsY[i], 0},
                                      column > 0 ? tops[static_cast<std::size_t>(column - 1)] : 0,
                                      node, domain, echo);
        double simulated = 0;
        if (node > 0) {
            const auto at = static_cast<std::size_t>(node - 1);
            simulated = surface ? (*surface)[at] - depths[at] : depths[at];
        }
        addPoint(comparison, {set.obsX[i], set.obsY[i], position(domain, node)[2]}, set.obsValue[i],
                 simulated);
    }
    writeBlock(echo);
    closeComparison(comparison);
}

} // namespace

void compare_heads_output(const Domain& domain) {
    const model::ObservationSet& set = run.observations;
    const NodeValues values = nodeValues(domain);
    const bool isPm = domain.tag == model::tags::pm;
    const bool bricks = run.meshNodesPerElement == 8;
    if (bricks && isPm) checkElements(domain);
    std::vector<std::int32_t> nodes;
    if (!bricks)
        nodes = nearestNodes({.domain = domain, .count = domain.nodeCount, .inPlan = false},
                             set.obsX, set.obsY, set.obsZ);
    Comparison comparison = openComparison(headTexts(domain));
    plot_data::TextBlock echo = plot_data::beginBlock(run.echoUnit);
    std::int32_t node = 0;
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        if (!isCompared(i)) continue;
        // Only pm has shape values. In a mesh of bricks the simulated depth of olf is always 0.
        double simulated = 0;
        if (!bricks) {
            find_node({set.obsX[i], set.obsY[i], set.obsZ[i]}, nodes[i], node, domain, echo);
            simulated = valueAt(values, node);
        } else if (isPm) {
            simulated = interpolated(domain, values, i);
        }
        addPoint(comparison,
                 {set.obsX[i], set.obsY[i], isPm ? set.obsZ[i] : position(domain, node)[2]},
                 set.obsValue[i], simulated);
    }
    writeBlock(echo);
    closeComparison(comparison);
}

void compare_gwtable_elevation_output(const Domain& domain) {
    ComparisonTexts texts = tableTexts();
    texts.plotFile = "compare_GWTable_Elevation.dat";
    texts.scatterFile = "compare_GWTable_Elevation_scatter.dat";
    texts.observed = "Observed GWT elevation";
    texts.simulated = "Simulated GWT elevation";
    texts.scatterTitle = "TITLE = \"Observed vs simulated heads scatter plot\"";
    compareColumns(domain, texts, &derived_columns::elevation(domain));
}

void compare_deth2gwtable_output(const Domain& domain) {
    ComparisonTexts texts = tableTexts();
    texts.plotFile = "compare_Depth2GWTable.dat";
    texts.scatterFile = "compare_D2GWT_scatter.dat";
    texts.observed = "Observed Depth2GWT";
    texts.simulated = "Simulated Depth2GWT";
    texts.scatterTitle = "TITLE = \"Observed vs simulated D2GWT plot\"";
    compareColumns(domain, texts, nullptr);
}

} // namespace observation_compare
