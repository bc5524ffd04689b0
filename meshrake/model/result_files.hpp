#pragma once

#include <string_view>

namespace model {

// Looks for a result file of any known kind with this suffix ("." and the index text), takes the
// time stamp from its header into `run.currentTimeText` and converts it when the control file says
// so. Sets "0.0" and `found` false when there is none. A malformed header ends the run.
void getTimestamp(std::string_view suffix, bool& found);

// The same search alone: leaves the file's name in `run.timeFile`. False when there is none.
bool findTimeFile(std::string_view suffix);

// Value of a time stamp of the file found last. An infinite one or one that is not a number ends
// the run.
double timeOf(std::string_view timestamp);

// Value of the time found last.
double currentTime();

// True when that lies in the time window, ends included.
bool inTimeWindow();

} // namespace model
