#pragma once

#include <string>
#include <string_view>

// Output of meshrake-tool to the terminal.
namespace screen {

// Returns the text with control characters as escapes, such as "\n" and "\x1b": names in files may
// contain them, and they could change the state of a terminal or break a table. A backslash stays.
std::string printable(std::string_view text);

// Writes to the standard output. Throws std::runtime_error if that fails.
void write(std::string_view text);

// Writes a line to the standard error stream; a failure is ignored, there is nowhere to report it.
void writeError(std::string_view line);

// Writes what is pending. Throws std::runtime_error if that fails.
void flush();

} // namespace screen
