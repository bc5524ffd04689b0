#pragma once

#include <string>
#include <string_view>

namespace plot_control {

// Copies the control text of one open unit to another and rewinds the copy. Drops blank lines,
// lines that begin with "!", and leading and trailing blanks. A line that begins with "include" is
// replaced by the lines of the file that it names; an "include" in that file is copied as it is.
// Lines are cut at 256 characters. A missing include file and a failed read end the run.
void strip_comments(int inputUnit, int outputUnit);

// Reads the next line that is neither blank nor a comment, without leading and trailing blanks.
// Returns false at the end of the text. `number` becomes the number of the line in its file. It
// must be 0 before the first call.
bool nextControlLine(int unit, std::string& line, int& number);

// True for a line that is replaced by the lines of a file, and the name of that file.
bool isInclude(std::string_view line);
std::string includedFile(std::string_view line);

} // namespace plot_control
