#include "meshrake/run/time_loop.hpp"

#include "meshrake/model/append_state.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"

namespace run_driver {

using model::run;
using model::write_string;

namespace {

std::string timeLine() {
    return run.timeSuffix + ": " + run.currentTimeText;
}

// Finds the files of the current index and takes their time.
bool findOutputTime() {
    run.timeSuffix = model::outputTimeIndex(run.timeIndex);
    bool found = false;
    model::getTimestamp("." + run.timeSuffix, found);
    if (!found) write_string("Warning: No output file found with extension: " + run.timeSuffix);
    return found;
}

void recordProgress() {
    if (run.tecplotAppend) model::writeTecplotAppend(run.timeIndex);
}

} // namespace

void timeLoop(Domains& domains) {
    run.timeIndex = run.firstTimeIndex = run.startTimeIndex;
    bool firstInWindowFound = false;
    for (;; ++run.timeIndex) {
        const bool found = findOutputTime();
        if (!found && run.tecplotAppend && run.startTimeIndex > 1)
            return write_string("No more data to append");
        if (found && run.truncateTime) {
            if (!model::inTimeWindow()) {
                write_string("Skip Time " + timeLine());
                continue;
            }
            if (!firstInWindowFound) run.firstTimeIndex = run.timeIndex;
            firstInWindowFound = true;
        }
        if (run.timeIndex == run.firstTimeIndex) {
            // Mesh and properties are written even where there is no output time at all.
            initAll(domains);
            recordProgress();
            if (!found) return;
            write_string("");
            write_string("Time " + timeLine());
        } else {
            if (!found) return;
            write_string("Time " + timeLine());
            appendAll(domains);
            recordProgress();
        }
        run.lastTimeText = run.currentTimeText;
    }
}

} // namespace run_driver
