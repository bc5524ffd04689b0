#include "meshrake/model/append_state.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <limits>

namespace model {

namespace {

const std::string stem = "tec_append";
constexpr std::int64_t fileBytes = 12; // the integer and the two lengths of its record
// The next run starts at the index after it, which must also fit into 32 bits.
constexpr std::int32_t maximumIndex = std::numeric_limits<std::int32_t>::max() - 1;

std::int32_t firstIndexInWindow() {
    for (std::int32_t index = 1;; ++index) {
        run.timeSuffix = outputTimeIndex(index);
        bool found = false;
        getTimestamp("." + run.timeSuffix, found);
        if (!found || inTimeWindow()) return index;
    }
}

void warnOnce(const std::string& name) {
    if (run.appendIndexWarned) return;
    run.appendIndexWarned = true;
    write_string("Warning: Failed to open file " + name +
                 " for writing, a later run will not append after this one");
}

} // namespace

void initTecplotAppend() {
    run.appendFirstIndex = run.truncateTime ? firstIndexInWindow() : 1;
    run.startTimeIndex = readTecplotAppend() + 1;
    for (const auto& write : {writeEcho, writeScreen}) {
        write("");
        write("Appending to Tecplot output");
        write("Starting at time index " + outputTimeIndex(run.startTimeIndex));
        write("");
    }
}

std::int32_t readTecplotAppend() {
    std::int32_t index = 0;
    const std::string name = problemFile(stem);
    const int unit = file_units::getUnit();
    const int status = io_layer::openRecordsRead(unit, name);
    if (status != io_layer::fileNotFound) {
        error::checkFileOpen(status, name);
        if (io_layer::bytesLeft(unit) != fileBytes)
            file_units::badContents(unit, "It must have " + std::to_string(fileBytes) + " bytes.");
        index = file_units::readInteger(unit);
        if (index < 0 || index > maximumIndex)
            file_units::badContents(unit,
                                    std::to_string(index) + " is not an index of an output time.");
    }
    file_units::freeUnit(unit);
    return index;
}

void writeTecplotAppend(std::int32_t index) {
    const std::string name = problemFile(stem);
    const int unit = file_units::getUnit();
    if (io_layer::openRecordsForCommit(unit, name) != io_layer::ok) {
        file_units::freeUnit(unit);
        return warnOnce(name);
    }
    error::checkFileWrite(io_layer::writeRecord(unit, &index, sizeof index), name);
    file_units::commitUnit(unit);
}

std::int32_t earlierOutputTimesAt(double time) {
    const std::string currentFile = run.timeFile, currentText = run.currentTimeText;
    std::int32_t count = 0;
    for (std::int32_t index = run.timeIndex - 1; index > 0; --index) {
        bool found = false;
        getTimestamp("." + outputTimeIndex(index), found);
        if (!found) break;
        if (currentTime() == time) ++count;
    }
    run.timeFile = currentFile;
    run.timeFileKnown = true;
    run.currentTimeText = currentText;
    return count;
}

} // namespace model
