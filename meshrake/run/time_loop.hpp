#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Processes the output times from `run.startTimeIndex` to the last index before one without result
// files. The first output time in the time window creates the data sets; each later one adds a
// zone. Without any output time, zone 1 has the mesh and its properties alone.
void timeLoop(Domains& domains);

// What the loop does at an output time.
enum class OutputTime {
    outsideWindow,   // skips it
    first,           // creates the data sets
    later,           // adds a zone
    onlyMesh,        // no result files at the first output time: writes the mesh and its properties
    nothingToAppend, // ends: no result files for a run that appends
    end              // ends: no result files
};

// Sets the index of the first output time.
void beginTimeLoop();

// Reads the time of the current index and decides. `firstInWindowFound` is false at first; the call
// sets it. A malformed header ends the run.
OutputTime nextOutputTime(bool& firstInWindowFound);

} // namespace run
