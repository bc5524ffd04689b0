#pragma once

#include <string>
#include <string_view>

// Output of meshrake-tool to the terminal, and texts for it.
namespace screen {

// Returns the text with control characters, and byte order marks, as escapes such as "\n". Names in
// files may contain them, and they could change the state of a terminal or break a table. A
// backslash is not escaped.
std::string printable(std::string_view text);

// Returns the number of characters of a text in UTF-8.
std::size_t widthOf(std::string_view text);

// Returns the fewest digits that give the number again in its type, or "NaN", "Infinity" or
// "-Infinity" as in a text data set.
std::string numberText(double value);
std::string numberText(float value);

// Writes to the standard output. Throws std::runtime_error if that fails.
void write(std::string_view text);

// Writes a line to the standard error stream. A failure is ignored, as it cannot be reported.
void writeError(std::string_view line);

// Writes pending output. Throws std::runtime_error if that fails.
void flush();

} // namespace screen
