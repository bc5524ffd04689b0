#include "meshrake/run/problem_prefix.hpp"

#include "meshrake/model/output_lines.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

namespace run {

using model::writeScreen;

namespace {

const std::string batchFile = "batch.pfx";
constexpr std::size_t prefixLength = 300;
// Limits the answers to the prompt, because a program that answers it may never stop.
constexpr int maximumLines = 1000;

// Reads the first word on the unit and skips blank lines before it. `lines` counts the lines that
// were read. Too many lines from the standard input end the run.
int readPrefix(int unit, std::string& prefix, int& lines) {
    std::string line;
    for (;; ++lines) {
        if (unit == io_layer::standardInput && lines == maximumLines)
            file_units::badContents(unit, "None of the first " + std::to_string(lines) +
                                              " lines names a problem.");
        int status = io_layer::readLine(unit, line);
        if (status != io_layer::ok) return status;
        status = free_form::readWord(line, prefix);
        if (status == io_layer::endOfFile) continue;
        prefix = std::string(StringHelpers::cut(prefix, prefixLength));
        ++lines;
        return status;
    }
}

bool isProblem(const std::string& prefix, std::string_view extension) {
    const std::string name = prefix + std::string(extension);
    if (file_units::exists(name)) return true;
    writeScreen("Unable to find file " + name);
    return false;
}

} // namespace

bool readBatchFile(std::string& prefix) {
    if (!file_units::exists(batchFile)) {
        writeScreen("batch.pfx file does not exist");
        return false;
    }
    bool good = true;
    const int unit = file_units::getUnit();
    if (io_layer::openTextRead(unit, batchFile) != io_layer::ok) {
        writeScreen("Error opening batch.pfx file");
        good = false;
    }
    int lines = 0;
    if (readPrefix(unit, prefix, lines) != io_layer::ok) {
        writeScreen("Error reading batch.pfx file");
        good = false;
    }
    file_units::freeUnit(unit);
    if (prefix.empty()) {
        writeScreen("Prefix from batch.pfx file is empty");
        good = false;
    }
    return good;
}

std::string getModelPrefix(std::string_view extension, bool& answered) {
    std::string prefix;
    answered = !readBatchFile(prefix) || !isProblem(prefix, extension);
    if (!answered) return prefix;
    writeScreen("Switching to interactive mode");
    for (int lines = 0;;) {
        writeScreen("Enter prefix of problem filename...");
        error::checkFileRead(readPrefix(io_layer::standardInput, prefix, lines),
                             io_layer::pathOf(io_layer::standardInput));
        if (isProblem(prefix, extension)) break;
        writeScreen("Please try again...");
    }
    return prefix;
}

void writeBatchFile(const std::string& prefix) {
    const int unit = file_units::getUnit();
    if (io_layer::openTextForCommit(unit, batchFile) != io_layer::ok) {
        writeScreen("Failed to generate batch.pfx file with prefix " + prefix);
        return file_units::freeUnit(unit);
    }
    file_units::writeLine(unit, prefix);
    file_units::commitUnit(unit);
}

} // namespace run
