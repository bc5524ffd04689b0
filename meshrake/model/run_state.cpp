#include "meshrake/model/run_state.hpp"

#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

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
