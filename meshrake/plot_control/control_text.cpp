#include "meshrake/plot_control/control_text.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace plot_control {

namespace {

constexpr std::size_t lineLimit = 256;
constexpr std::string_view includeWord = "include";

// Reads the next line that is not a comment, without leading blanks. Returns false at the end.
bool nextLine(int unit, std::string& line) {
    std::string raw;
    while (file_units::readLine(unit, raw, io_layer::LongLine::cut)) {
        line = StringHelpers::trimLeft(StringHelpers::cut(raw, lineLimit));
        if (!line.empty() && line.front() != '!') return true;
    }
    return false;
}

void copyIncluded(std::string_view name, int outputUnit) {
    const std::string path(name);
    if (!file_units::exists(path)) error::input_error("Include file not found: " + path);
    const int unit = file_units::openTextRead(path);
    std::string line;
    while (nextLine(unit, line)) file_units::writeLine(outputUnit, line);
    file_units::freeUnit(unit);
}

} // namespace

void strip_comments(int inputUnit, int outputUnit) {
    std::string line;
    while (nextLine(inputUnit, line)) {
        if (line.starts_with(includeWord))
            copyIncluded(StringHelpers::trimLeft(std::string_view(line).substr(includeWord.size())),
                         outputUnit);
        else
            file_units::writeLine(outputUnit, line);
    }
    file_units::rewind(outputUnit);
}

} // namespace plot_control
