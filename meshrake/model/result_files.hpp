#pragma once

#include <string_view>

namespace model {

// Searches for a result file of any known kind with this suffix ("." and the time index) and puts
// its name into `run.timeFile`. Reads the time stamp of its header into `run.currentTimeText`,
// converted if the control file requests it.
// Without such a file `found` is false and the text is "0.0". A malformed header ends the run.
void getTimestamp(std::string_view suffix, bool& found);

// Searches for the same file and puts its name into `run.timeFile`. Returns false if none exists. A
// file whose first record cannot be read ends the run.
bool findTimeFile(std::string_view suffix);

// Returns the value of a time stamp, in the unit of the stamp. One that is not a finite number ends
// the run; the banner names `run.timeFile`.
double timeOf(std::string_view timestamp);

// Returns the value of `run.currentTimeText`.
double currentTime();

// True if that time is in the time window, which includes both ends.
bool inTimeWindow();

} // namespace model
