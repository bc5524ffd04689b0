#include "meshrake/run/control_file.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_control/control_text.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/run/banner.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace run {

namespace {

const std::string scratchFile = "scratch_plot";

// Opens the file, which all runs in a folder share, and locks it. The lock is held from the first
// write to the last read.
int openScratchFile() {
    const int unit = file_units::getUnit();
    const auto open = [unit](bool wait) {
        return io_layer::openTextLocked(unit, scratchFile, io_layer::Flush::inBlocks, wait);
    };
    int status = open(false);
    if (status == io_layer::lockedElsewhere) {
        model::write_string("Waiting for another run that uses " + scratchFile);
        status = open(true);
    }
    error::checkFileOpen(status, scratchFile);
    return unit;
}

void readControl(const std::string& name, Domains& domains) {
    // The control file is opened first, so that a scratch file that is a link to it is refused.
    const int control = file_units::openTextRead(name);
    const int scratch = openScratchFile();
    plot_control::strip_comments(control, scratch);
    file_units::freeUnit(control);
    error::checkFileOpen(io_layer::openTextRead(model::run.controlUnit, scratchFile), scratchFile);
    plot_control::readPlotControlInit();
    for (model::Domain* domain : processingOrder(domains)) plot_control::readPlotControl(*domain);
    plot_control::readPlotControl(domains.addition);
    plot_data::selectWriter();
    file_units::freeUnit(model::run.controlUnit);
    file_units::freeUnit(scratch);
}

void writeTemplate(const std::string& name, Domains& domains) {
    error::checkFileOpen(io_layer::openTextForCommit(model::run.controlUnit, name), name);
    plot_control::writePlotControlInit();
    for (const model::Domain* domain : processingOrder(domains))
        plot_control::writePlotControl(*domain);
    plot_control::writePlotControl(domains.addition);
    plot_control::writePlotControlEnd();
    file_units::commitUnit(model::run.controlUnit);
}

} // namespace

void processControlFile(Domains& domains) {
    const std::string name = model::fileName(model::run.problemPrefix + ".plot.control");
    model::run.controlFileExists = file_units::exists(name);
    model::run.controlUnit = file_units::getUnit();
    if (model::run.controlFileExists && !model::run.makePlotControl)
        readControl(name, domains);
    else
        writeTemplate(name, domains);
    if (model::run.makePlotControl)
        normalExitStop("Generate " + model::run.problemPrefix +
                       ".plot.control file and terminate...");
}

} // namespace run
