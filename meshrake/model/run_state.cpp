#include "meshrake/model/run_state.hpp"

#include "tvncommon/StringHelpers.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/io_layer.hpp"

namespace model {

RunState run;

bool isOnlyLent(const Domain& domain) {
    return domain.tag == tags::pm && run.pmPassRequired && !domain.writeDomain.enabled;
}

void writeScreen(std::string_view line) {
    file_units::writeLine(io_layer::screen, line);
}

void writeEcho(std::string_view line) {
    file_units::writeLine(run.echoUnit, line);
}

void write_string(std::string_view line) {
    writeEcho(line);
    writeScreen(line);
}

std::string fileName(std::string_view text) {
    return std::string(StringHelpers::trimRight(text));
}

std::string problemFile(std::string_view rest) {
    return fileName(run.problemPrefix + "o." + std::string(rest));
}

} // namespace model
