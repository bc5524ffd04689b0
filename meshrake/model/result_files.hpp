#pragma once

#include <string_view>

namespace model {

// Searches for a result file of any known kind with this suffix ("." and the time index). Reads the
// time stamp of its header into `run.currentTimeText`, converted if the control file requests it.
// Without such a file `found` is false and the text is "0.0". A malformed header ends the run.
void getTimestamp(std::string_view suffix, bool& found);

// Searches for the same file and puts its name into `run.timeFile`. Returns false if none exists.
bool findTimeFile(std::string_view suffix);

// Value of a time stamp of the file found last. An infinite one or one that is not a number ends
// the run.
double timeOf(std::string_view timestamp);

// Value of the time found last.
double currentTime();

// True if that time is in the time window, which includes both ends.
bool inTimeWindow();

} // namespace model
