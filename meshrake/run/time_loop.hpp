#pragma once

#include "meshrake/run/domains.hpp"

namespace run {

// Processes the output times from `run.startTimeIndex` to the last index before one without result
// files. The first output time in the time window creates the data sets; each later one adds a
// zone. Without any output time, zone 1 has the mesh and its properties alone.
void timeLoop(Domains& domains);

// The cases of the loop at the current index.
enum class OutputTime {
    outsideWindow,   // the output time is skipped
    first,           // the data sets are created
    later,           // the data sets get a zone
    onlyMesh,        // no result files at the first index: zone 1 has the mesh and its properties
    nothingToAppend, // no result files for a run that appends: the loop ends
    end              // no result files: the loop ends
};

// Sets the index of the first output time.
void beginTimeLoop();

// Reads the time stamp of the current index and returns the case. `firstInWindowFound` is false
// before the first call, which the calls set to true at the first output time in the time window. A
// malformed header of a result file ends the run.
OutputTime nextOutputTime(bool& firstInWindowFound);

} // namespace run
