#include "companion/check/surface_plots.hpp"

#include "companion/check/measuring_writer.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/surface_plots/depth_plot.hpp"
#include "meshrake/surface_plots/isopach_plot.hpp"

namespace check {

using model::Domain;
using model::run;

namespace {

void measure(Work& work, const Domain& domain, const std::string& name,
             const std::function<void()>& plot) {
    selectMeasuringWriter();
    if (!tryStep(work, {.kind = "surface_plot"}, plot)) return;
    PlotReport report;
    report.file = model::problemFile(name) + std::string(plot_data::plotFileExtension());
    report.nodes = domain.nnTruncated;
    report.elements = domain.neTruncated;
    report.zones = measureOf(domain).zones;
    finishMeasure(domain, report.bytes);
    work.report.bytesNeeded += report.bytes;
    work.report.plots.push_back(std::move(report));
}

} // namespace

void measureSurfacePlots(Work& work) {
    run.tecplotAppend = false; // the plots are always replaced
    Domain& pm = work.domains.pm;
    Domain& olf = work.domains.olf;
    if (run.plotIsopach)
        measure(work, olf, "pm_Isopach",
                [&] { surface_plots::plot_pmzone_isopach_structure(olf, pm); });
    if (run.plotDepthBelowSurface)
        measure(work, pm, "pm_DepthToSurf", [&] { surface_plots::plot_pmdepth_grndsurf(olf, pm); });
}

} // namespace check
