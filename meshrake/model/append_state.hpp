#pragma once

#include <cstdint>

// What carries a continued output from one run to the next: <prefix>o.tec_append, one record of one
// integer, the index of the last finished output time.
namespace model {

// Sets `run.startTimeIndex` to the output time behind the last finished one, 1 when there is no
// file, and `run.appendFirstIndex` to the first one in the time window. Ends the run when the file
// is damaged.
void initTecplotAppend();

// Index of the last finished output time, 0 when there is no file. One that cannot be opened or is
// damaged ends the run.
std::int32_t readTecplotAppend();

// Records the last finished output time: the file holds the old index or the new one at any moment,
// unless the folder takes no new file and the index is written in place. The first failed open
// brings a warning; a failed write ends the run.
void writeTecplotAppend(std::int32_t index);

// Number of output times before the current one that have the same time. Looks back as far as there
// are result files; one that is damaged ends the run.
std::int32_t earlierOutputTimesAt(double time);

} // namespace model
