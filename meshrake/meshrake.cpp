#include "meshrake/meshrake.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/problem_description.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
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

namespace {

// Opens and locks the echo file. Its lock keeps other runs from the files of this prefix.
void openEchoFile() {
    const std::string name = model::problemFile("meshrake.eco");
    model::run.echoUnit = file_units::getUnit();
    const int status =
        io_layer::openTextLocked(model::run.echoUnit, name, io_layer::Flush::everyLine, false);
    if (status == io_layer::lockedElsewhere)
        error::fatalError("Another run is using " + model::run.problemPrefix);
    error::checkFileOpen(status, name);
    error::setErrorLoggingFileUnit(model::run.echoUnit);
    warning_messages::clearCurrentCmd();
    warning_messages::warnNow();
}

// Writes the requested comparisons and plots of the last output time.
void writeProducts(run::Domains& domains) {
    const stages::Scope stage(stages::Stage::products);
    using namespace observation_compare;
    if (model::run.compareHeads) {
        read_obs_heads_xyz(domains.pm);
        compare_heads_output(domains.pm);
    }
    if (model::run.compareWaterTable) {
        read_obs_heads_xy(domains.pm);
        compare_gwtable_elevation_output(domains.pm);
    }
    if (model::run.compareDepthToTable) {
        read_d2gwt_heads(domains.pm);
        compare_deth2gwtable_output(domains.pm);
    }
    if (model::run.compareSurfaceDepth) {
        read_obs_heads_xy(domains.olf);
        compare_heads_output(domains.olf);
    }
    if (model::run.bcLocationOutput) paraview::addition_paraview_bclocationout();
    if (model::run.plotIsopach)
        surface_plots::plot_pmzone_isopach_structure(domains.olf, domains.pm);
    if (model::run.plotDepthBelowSurface)
        surface_plots::plot_pmdepth_grndsurf(domains.olf, domains.pm);
}

void runMeshrake(int argc, const char* const* argv, bool legacyVtk) {
    run::resetAll();
    model::run.paraviewMode = model::run.bcLocationOutput = legacyVtk;
    run::header(io_layer::screen);
    run::readCommandLine(argc, argv);
    bool answered = false;
    model::run.problemPrefix = run::getModelPrefix(".skiv", answered);

    // From here on every banner is written to the echo file too.
    openEchoFile();
    run::header(model::run.echoUnit);
    // Not before the lock: a run that finds it taken ends and must not change a file.
    if (answered) run::writeBatchFile(model::run.problemPrefix);
    error::warningMsg("Meshrake has been deprecated and will be removed in a future release.\n"
                      "We recommend using tvn2vtu for post-processing going forward.");

    model::titleRead();
    model::speciesRead();
    model::hmcFractionsRead();
    run::Domains domains;
    run::createDomains(domains);
    run::processControlFile(domains);

    // From here on the mesh and the requested options are fixed.
    model::run.pmPassRequired = run::pmNeededByCommonNodeDomains(domains);
    model::run.pmColumnsUsed = run::commonNodeDomainsUsePm(domains);
    run::timeLoop(domains);
    model::writeScreen("");
    model::writeEcho("");
    run::closeAll(domains);
    model::run.tecplotAppend = false;
    writeProducts(domains);
    run::normalExitStop();
}

} // namespace

int meshrake_main(int argc, const char* const* argv, bool legacyVtk) {
    try {
        try {
            runMeshrake(argc, argv, legacyVtk);
        } catch (const std::bad_alloc&) {
            error::check_alloc(io_layer::outOfMemory, "working memory");
        } catch (const std::exception& unexpected) {
            error::fatalError(std::string("Internal error: ") + unexpected.what());
        }
    } catch (const error::RunEnded& end) {
        return end.status;
    }
    return 0;
}
