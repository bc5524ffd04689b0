#pragma once

#include <string_view>

// Write lines on the screen and to the echo file, but not in a dry run. A failed write ends the
// run.
namespace model {

void writeScreen(std::string_view line);
void writeEcho(std::string_view line);

// Writes the line to the echo file and then to the screen.
void write_string(std::string_view line);

} // namespace model
