#pragma once

namespace plot_control {

// Copies the control text of one open unit to another and rewinds the copy. Drops blank lines,
// lines that begin with "!", and leading and trailing blanks. A line that begins with "include" is
// replaced by the lines of the file that it names; an "include" in that file is copied as it is.
// Lines are cut at 256 characters. A missing include file and a failed read end the run.
void strip_comments(int inputUnit, int outputUnit);

} // namespace plot_control
