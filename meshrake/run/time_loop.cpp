#include "meshrake/run/time_loop.hpp"

#include "meshrake/model/append_state.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"

namespace run {

using model::write_string;

namespace {

std::string timeLine() {
    return model::run.timeSuffix + ": " + model::run.currentTimeText;
}

// Reads the time of the current index from its result files. Returns false if none exists.
bool findOutputTime() {
    model::run.timeSuffix = model::outputTimeIndex(model::run.timeIndex);
    bool found = false;
    model::getTimestamp("." + model::run.timeSuffix, found);
    if (!found)
        write_string("Warning: No output file found with extension: " + model::run.timeSuffix);
    return found;
}

void recordProgress() {
    if (model::run.tecplotAppend) model::writeTecplotAppend(model::run.timeIndex);
}

} // namespace

void beginTimeLoop() {
    model::run.timeIndex = model::run.firstTimeIndex = model::run.startTimeIndex;
}

OutputTime nextOutputTime(bool& firstInWindowFound) {
    const bool found = findOutputTime();
    if (!found && model::run.tecplotAppend && model::run.startTimeIndex > 1)
        return OutputTime::nothingToAppend;
    if (found && model::run.truncateTime) {
        if (!model::inTimeWindow()) return OutputTime::outsideWindow;
        if (!firstInWindowFound) model::run.firstTimeIndex = model::run.timeIndex;
        firstInWindowFound = true;
    }
    if (model::run.timeIndex == model::run.firstTimeIndex)
        return found ? OutputTime::first : OutputTime::onlyMesh;
    return found ? OutputTime::later : OutputTime::end;
}

void timeLoop(Domains& domains) {
    beginTimeLoop();
    bool firstInWindowFound = false;
    for (;; ++model::run.timeIndex) {
        const OutputTime time = nextOutputTime(firstInWindowFound);
        if (time == OutputTime::nothingToAppend) return write_string("No more data to append");
        if (time == OutputTime::end) return;
        if (time == OutputTime::outsideWindow) {
            write_string("Skip Time " + timeLine());
            continue;
        }
        if (time == OutputTime::later) {
            write_string("Time " + timeLine());
            appendAll(domains);
            recordProgress();
        } else {
            initAll(domains);
            recordProgress();
            if (time == OutputTime::onlyMesh) return;
            write_string("");
            write_string("Time " + timeLine());
        }
        model::run.lastTimeText = model::run.currentTimeText;
    }
}

} // namespace run
