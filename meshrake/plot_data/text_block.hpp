#pragma once

#include <cstdint>
#include <string_view>

// Text that is collected in `run.writeBuffer` and written to a file in blocks. The buffer is empty
// between two arrays.
namespace plot_data {

struct TextBlock {
    int unit;
    char* end; // one past the last character
};

// Starts an empty block for the file of `unit`.
TextBlock beginBlock(int unit);

// Ensures space for a row of `rowBytes` bytes: writes and empties the block if the row does not
// fit. Returns how many such rows fit.
std::int64_t ensureSpace(TextBlock& block, std::int64_t rowBytes);

// Appends a line and a line feed.
void appendLine(TextBlock& block, std::string_view line);

// Writes the block and empties it. A failure ends the run.
void writeBlock(TextBlock& block);

} // namespace plot_data
