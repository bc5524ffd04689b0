#pragma once

#include <cstdint>

// State of an output to which several runs append. The file <prefix>o.tec_append has one record
// with one 32-bit integer, the index of the last finished output time.
namespace model {

// Sets `run.startTimeIndex` to the output time after the last finished one, or to 1 without a file,
// and shows it on echo file and screen. Sets `run.appendFirstIndex` to the first output time in the
// time window. A damaged file ends the run.
void initTecplotAppend();

// Returns the index of the last finished output time, 0 without a file. A file that cannot be
// opened or is damaged ends the run.
std::int32_t readTecplotAppend();

// Records the last finished output time. The new file replaces the old one in one step, so that
// either the old or the new index remains after an interruption. In a folder without write
// permission the index is overwritten in place. Only the first failed open of a run shows a
// warning. A failed write ends the run.
void writeTecplotAppend(std::int32_t index);

// Returns the number of output times before the current one that have this time. The search goes
// from the current index towards 1 and ends at the first index without result files. A damaged file
// ends the run.
std::int32_t earlierOutputTimesAt(double time);

} // namespace model
