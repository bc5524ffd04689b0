#include "meshrake/surface_plots/depth_plot.hpp"

#include "meshrake/derived_columns/mesh_columns.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/zone.hpp"
#include "meshrake/surface_plots/plot_steps.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

namespace surface_plots {

using model::Domain;
using plot_data::Packing;

namespace {

constexpr std::string_view plot = "plot pm depth below ground surface";
constexpr std::string_view variables[] = {"X", "Y", "Z", "DepthToSurf"};

// Returns pm's column of depths if the run has it. Otherwise fills and returns `computed`.
const std::vector<double>& depthOf(const Domain& olf, const Domain& pm,
                                   std::vector<double>& computed) {
    const model::OutputVar* var = model::findOutputVar(pm, "depth2Surf");
    if (var && var->firstExists) return var->columns[0].real8;
    ArrayHelpers::allocateArray(computed, pm.nodeCount, "Depth to surface array");
    const auto sheetNodes = static_cast<std::size_t>(olf.nodeCount);
    derived_columns::computeDepthBelowTop(pm, sheetNodes, computed.size() / sheetNodes, computed);
    return computed;
}

} // namespace

void plot_pmdepth_grndsurf(const Domain& olf, Domain& pm) {
    checkSurface(olf, plot);
    if (olf.nodeCount > pm.nodeCount)
        error::input_error("The " + std::string(plot) +
                           " finds fewer nodes in pm than in olf.\nFile: " +
                           model::problemFile("coordinates_olf"));
    truncateForPlot(pm, pm);
    std::vector<double> computed;
    const std::vector<double>& depth = depthOf(olf, pm, computed);

    openPlot(plot, "pm_DepthToSurf", variables, pm);
    plot_data::tecplotWriteZoneFE("DepthToSurf", "", 0, pm);
    std::int32_t variable = 0;
    const auto write = [&](const std::vector<double>& values, std::string_view label) {
        plot_data::tecplotWriteArrayReal8(++variable, pm.nodeCount, values.data(),
                                          Packing{pm.outputIsPacked, pm.nodeIncluded.data()}, label,
                                          pm);
    };
    write(pm.x, "x");
    write(pm.y, "y");
    write(pm.z, "z");
    write(depth, "DepthToSurf");
    plot_data::tecplotWriteConnectivity(pm);
    plot_data::tecplotFileClose(pm);
}

} // namespace surface_plots
