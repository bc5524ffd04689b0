#include "meshrake/paraview/bc_locations.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/paraview/array_rows.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <limits>
#include <span>

namespace paraview {

namespace {

constexpr std::size_t lineLength = 1000;
constexpr std::size_t maximumNames = 1000;
constexpr std::size_t nameLengthLimit = 300;

bool nextLine(int unit, std::string& line) {
    if (!file_units::readLine(unit, line, io_layer::LongLine::cut)) return false;
    line = StringHelpers::cut(line, lineLength);
    return true;
}

// Reads a line. The end of the file ends the run.
std::string requiredLine(int unit) {
    std::string line;
    if (!nextLine(unit, line)) error::checkFileRead(io_layer::endOfFile, io_layer::pathOf(unit));
    return line;
}

std::string firstWord(std::string text) {
    remove_front_space_tab(text);
    return text.substr(0, text.find(' '));
}

std::size_t countDimensions(const std::string& line) {
    std::size_t dimensions = 0;
    for (const char* letter : {"\"X\"", "\"Y\"", "\"Z\""})
        if (line.find(letter) != std::string::npos) ++dimensions;
    return dimensions;
}

std::int32_t readPointCount(int unit) {
    const std::string line = requiredLine(unit);
    const std::size_t mark = line.find("I=");
    if (mark == std::string::npos) file_units::badContents(unit, "I= is missing: " + line);
    constexpr std::int32_t unread = std::numeric_limits<std::int32_t>::min();
    std::int32_t points = unread;
    const int status = free_form::readInteger(firstWord(line.substr(mark + 2)), points);
    if (status != io_layer::ok || points == unread)
        file_units::badContents(unit, "The number of points is no integer: " + line);
    return points;
}

void readNumbers(int unit, std::span<double> numbers) {
    const auto line = [unit](std::string& text) { return nextLine(unit, text); };
    for (double& number : numbers)
        error::checkFileRead(
            free_form::readReals(line, {&number, 1}, free_form::MissingValue::refused),
            io_layer::pathOf(unit));
}

void writeHead(int unit) {
    file_units::writeLine(unit, "# vtk DataFile Version 2.0");
    file_units::writeLine(unit, "BOUNDARY NODE LOCATIONS");
    file_units::writeLine(unit, "ASCII");
    file_units::writeLine(unit, "");
    file_units::writeLine(unit, "DATASET POLYDATA");
}

} // namespace

void addition_paraview_bclocationout() {
    const std::string list = model::problemFile("boundary_conditions");
    if (!file_units::exists(list)) {
        model::writeScreen(" *o.boundary_conditions FILE DOES NOT EXISTS");
        return;
    }
    const int listUnit = file_units::openTextRead(list);
    std::vector<std::string> names;
    get_bc_names_from_bc_file(listUnit, names, nameLengthLimit);
    file_units::freeUnit(listUnit);

    for (const std::string& name : names) {
        const std::string input = model::problemFile("Bc." + name + ".dat");
        if (!file_units::exists(input)) continue;
        const int inputUnit = file_units::openTextRead(input);
        const int outputUnit = file_units::openTextReplace(
            input.substr(0, input.size() - 3) + "vtk", io_layer::Flush::inBlocks);
        convert_bc_file_into_paraviewformat(inputUnit, outputUnit);
        file_units::freeUnit(inputUnit);
        file_units::freeUnit(outputUnit);
    }
}

void convert_bc_file_into_paraviewformat(int inputUnit, int outputUnit) {
    requiredLine(inputUnit);
    const std::size_t dimensions = countDimensions(requiredLine(inputUnit));
    const std::int32_t points = readPointCount(inputUnit);
    if (points < 0) file_units::checkCount(inputUnit, points, 1, "points");

    std::vector<std::vector<double>> xyz(dimensions);
    for (std::vector<double>& coordinates : xyz) {
        if (requiredLine(inputUnit).find('#') == std::string::npos) continue;
        // A number takes at least one byte; the last one may have no line end.
        file_units::checkCount(inputUnit, points, 1, "points");
        ArrayHelpers::allocateArray(coordinates, points, "convert bc file to paraview xyz array");
        readNumbers(inputUnit, coordinates);
    }
    writeHead(outputUnit);
    writePoints({xyz.begin(), xyz.end()}, points, outputUnit);
}

void remove_front_space_tab(std::string& text) {
    text.erase(0, std::min(text.find_first_not_of(" \t"), text.size()));
}

void get_bc_names_from_bc_file(int unit, std::vector<std::string>& names, std::size_t nameLength) {
    std::string line;
    while (nextLine(unit, line)) {
        if (line.find("! name") == std::string::npos) continue;
        if (names.size() == maximumNames)
            file_units::badContents(unit, "There are more than " + std::to_string(maximumNames) +
                                              " names of boundary conditions.");
        names.push_back(firstWord(line).substr(0, nameLength));
    }
}

} // namespace paraview
