#include "meshrake/plot_control/control_source.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace plot_control {

using model::run;

int readControlLine(std::string& line) {
    return run.controlSource ? run.controlSource->readLine(line)
                             : io_layer::readLine(run.controlUnit, line);
}

void rewindControl() {
    if (run.controlSource)
        run.controlSource->rewind();
    else
        file_units::rewind(run.controlUnit);
}

void noteUse(LineUse use) {
    if (run.controlSource) run.controlSource->noteUse(use);
}

void noteValuesRead() {
    if (run.controlSource) run.controlSource->valuesRead();
}

} // namespace plot_control
