#include "meshrake/run/control_file.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_control/control_text.hpp"
#include "meshrake/run/banner.hpp"
#include "tvncommon/error.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/io_layer.hpp"

namespace run_driver {

using model::run;

namespace {

const std::string scratchFile = "scratch_plot";

void stripControlFile(const std::string& name) {
    const int scratch = file_units::openTextReplace(scratchFile, io_layer::Flush::inBlocks);
    const int control = file_units::openTextRead(name);
    plot_control::strip_comments(control, scratch);
    file_units::freeUnit(control);
    file_units::freeUnit(scratch);
}

void readControl(const std::string& name, Domains& domains) {
    stripControlFile(name);
    error::checkFileOpen(io_layer::openTextRead(run.controlUnit, scratchFile), scratchFile);
    plot_control::readPlotControlInit();
    for (model::Domain* domain : processingOrder(domains)) plot_control::readPlotControl(*domain);
    plot_control::readPlotControl(domains.addition);
}

void writeTemplate(const std::string& name, Domains& domains) {
    error::checkFileOpen(
        io_layer::openTextReplace(run.controlUnit, name, io_layer::Flush::inBlocks), name);
    plot_control::writePlotControlInit();
    for (const model::Domain* domain : processingOrder(domains))
        plot_control::writePlotControl(*domain);
    plot_control::writePlotControl(domains.addition);
    plot_control::writePlotControlEnd();
}

} // namespace

void processControlFile(Domains& domains) {
    const std::string name = model::fileName(run.problemPrefix + ".plot.control");
    run.controlFileExists = file_units::exists(name);
    run.controlUnit = file_units::getUnit();
    if (run.controlFileExists && !run.makePlotControl)
        readControl(name, domains);
    else
        writeTemplate(name, domains);
    file_units::freeUnit(run.controlUnit);
    if (run.makePlotControl)
        normalExitStop("Generate " + run.problemPrefix + ".plot.control file and terminate...");
}

} // namespace run_driver
