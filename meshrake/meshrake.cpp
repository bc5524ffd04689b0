#include "meshrake/meshrake.hpp"

#include "meshrake/model/problem_description.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/comparisons.hpp"
#include "meshrake/observation_compare/observation_files.hpp"
#include "meshrake/paraview/bc_locations.hpp"
#include "meshrake/run/banner.hpp"
#include "meshrake/run/command_line.hpp"
#include "meshrake/run/control_file.hpp"
#include "meshrake/run/domains.hpp"
#include "meshrake/run/problem_prefix.hpp"
#include "meshrake/run/reset.hpp"
#include "meshrake/run/time_loop.hpp"
#include "meshrake/surface_plots/depth_plot.hpp"
#include "meshrake/surface_plots/isopach_plot.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/diagnostics/warning_messages.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <exception>
#include <new>

using model::run;
using namespace run_driver;

namespace {

// The lock of the echo file keeps other runs from the files of this prefix.
void openEchoFile() {
    const std::string name = model::problemFile("meshrake.eco");
    run.echoUnit = file_units::getUnit();
    const int status =
        io_layer::openTextLocked(run.echoUnit, name, io_layer::Flush::everyLine, false);
    if (status == io_layer::lockedElsewhere)
        error::fatalError("Another run is using " + run.problemPrefix);
    error::checkFileOpen(status, name);
    error::setErrorLoggingFileUnit(run.echoUnit);
    warning_messages::clearCurrentCmd();
    warning_messages::warnNow();
}

// Each of them by a wish of the control file, on the state of the last output time.
void writeProducts(Domains& domains) {
    using namespace observation_compare;
    if (run.compareHeads) {
        read_obs_heads_xyz(domains.pm);
        compare_heads_output(domains.pm);
    }
    if (run.compareWaterTable) {
        read_obs_heads_xy(domains.pm);
        compare_gwtable_elevation_output(domains.pm);
    }
    if (run.compareDepthToTable) {
        read_d2gwt_heads(domains.pm);
        compare_deth2gwtable_output(domains.pm);
    }
    if (run.compareSurfaceDepth) {
        read_obs_heads_xy(domains.olf);
        compare_heads_output(domains.olf);
    }
    if (run.bcLocationOutput) paraview::addition_paraview_bclocationout();
    if (run.plotIsopach) surface_plots::plot_pmzone_isopach_structure(domains.olf, domains.pm);
    if (run.plotDepthBelowSurface) surface_plots::plot_pmdepth_grndsurf(domains.olf, domains.pm);
}

void runMeshrake(int argc, const char* const* argv, bool legacyVtk) {
    resetAll();
    run.paraviewMode = run.bcLocationOutput = legacyVtk;
    header(io_layer::screen);
    readCommandLine(argc, argv);
    bool answered = false;
    run.problemPrefix = getModelPrefix(".skiv", answered);

    // From here on every banner stands in the echo file too.
    openEchoFile();
    header(run.echoUnit);
    // Only now: a run that is refused because another one holds the lock changes no file.
    if (answered) writeBatchFile(run.problemPrefix);
    error::warningMsg("Meshrake has been deprecated and will be removed in a future release.\n"
                      "We recommend using tvn2vtu for post-processing going forward.");

    model::titleRead();
    model::speciesRead();
    model::hmcFractionsRead();
    Domains domains;
    createDomains(domains);
    processControlFile(domains);

    // From here on nodes, elements and wishes are fixed.
    run.pmPassRequired = pmNeededByCommonNodeDomains(domains);
    timeLoop(domains);
    model::writeScreen("");
    model::writeEcho("");
    closeAll(domains);
    run.tecplotAppend = false;
    writeProducts(domains);
    normalExitStop();
}

} // namespace

int meshrake_main(int argc, const char* const* argv, bool legacyVtk) {
    try {
        try {
            runMeshrake(argc, argv, legacyVtk);
        } catch (const std::bad_alloc&) {
            error::check_alloc(io_layer::outOfMemory, "working memory");
        } catch (const std::exception& surprise) {
            error::fatalError(std::string("Internal error: ") + surprise.what());
        }
    } catch (const error::RunEnded& end) {
        return end.status;
    }
    return 0;
}
