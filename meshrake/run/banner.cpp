#include "meshrake/run/banner.hpp"

#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/version.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <string>

namespace run {

namespace {

constexpr std::size_t frameWidth = 74;

std::string framed(const std::string& text) {
    std::string line = "@@" + text;
    line.resize(frameWidth - 2, ' ');
    return line + "@@";
}

} // namespace

void header(int unit) {
    const std::string rule(frameWidth, '@');
    const std::string blank = framed("");
    const std::string lines[] = {rule,
                                 rule,
                                 blank,
                                 framed("   MESHRAKE: Post-processor for Terravane"),
                                 blank,
                                 framed("   REVISION:   " + std::string(version::revision)),
                                 framed("   BUILD DATE: " + std::string(version::buildDate)),
                                 framed("   BUILD INFO: " + std::string(version::buildInfo)),
                                 blank,
                                 blank,
                                 blank,
                                 blank,
                                 blank,
                                 rule,
                                 rule,
                                 ""};
    for (const std::string& line : lines)
        file_units::writeLine(unit < 1 ? io_layer::screen : unit, line);
}

void normalExitStop(std::string_view message) {
    const std::string closing = std::string(20, ' ') + "---- Normal exit ----";
    for (const auto& write : {model::writeScreen, model::writeEcho}) {
        if (message.empty()) continue;
        write("");
        write(message);
    }
    for (const auto& write : {model::writeScreen, model::writeEcho})
        for (const std::string_view line :
             {std::string_view(), std::string_view(), std::string_view(), std::string_view(closing),
              std::string_view(), std::string_view()})
            write(line);
    file_units::freeUnitAll();
    throw error::RunEnded{0};
}

} // namespace run
