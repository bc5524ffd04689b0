#include "meshrake/plot_control/control_text.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace plot_control {

namespace {

constexpr std::size_t lineLimit = 256;
constexpr std::string_view includeWord = "include";

void copyIncluded(const std::string& path, int outputUnit) {
    if (!file_units::exists(path)) error::input_error("Include file not found: " + path);
    const int unit = file_units::openTextRead(path);
    std::string line;
    int number = 0;
    while (nextControlLine(unit, line, number)) file_units::writeLine(outputUnit, line);
    file_units::freeUnit(unit);
}

} // namespace

bool nextControlLine(int unit, std::string& line, int& number) {
    std::string raw;
    while (file_units::readLine(unit, raw, io_layer::LongLine::cut)) {
        ++number;
        line = StringHelpers::trimLeft(StringHelpers::cut(raw, lineLimit));
        if (!line.empty() && line.front() != '!') return true;
    }
    return false;
}

bool isInclude(std::string_view line) {
    return line.starts_with(includeWord);
}

std::string includedFile(std::string_view line) {
    return std::string(StringHelpers::trimLeft(line.substr(includeWord.size())));
}

void strip_comments(int inputUnit, int outputUnit) {
    std::string line;
    int number = 0;
    while (nextControlLine(inputUnit, line, number)) {
        if (isInclude(line))
            copyIncluded(includedFile(line), outputUnit);
        else
            file_units::writeLine(outputUnit, line);
    }
    file_units::rewind(outputUnit);
}

} // namespace plot_control
