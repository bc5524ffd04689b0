#include "meshrake/model/output_lines.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace model {

void writeScreen(std::string_view line) {
    if (!run.dryRun) file_units::writeLine(io_layer::screen, line);
}

void writeEcho(std::string_view line) {
    if (!run.dryRun) file_units::writeLine(run.echoUnit, line);
}

void write_string(std::string_view line) {
    writeEcho(line);
    writeScreen(line);
}

} // namespace model
