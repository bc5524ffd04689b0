#pragma once

#include <cstdint>
#include <string_view>

// Text that is collected in `run.writeBuffer` and written to a file in blocks. The arrays of a zone
// share blocks; otherwise the buffer is empty after a block.
namespace plot_data {

struct TextBlock {
    int unit;
    char* end; // one past the last character
};

// Starts a block for the file of `unit`. It continues the block that was kept for the file; one for
// another file is written.
TextBlock beginBlock(int unit);

// Ensures space for a row of `rowBytes` bytes: writes and empties the block if the row does not
// fit. Returns how many such rows fit.
std::int64_t ensureSpace(TextBlock& block, std::int64_t rowBytes);

// Appends a line and a line feed.
void appendLine(TextBlock& block, std::string_view line);

// Writes the block and empties it. A failure ends the run.
void writeBlock(TextBlock& block);

// Leaves the text in the buffer, for the next block of this file or until `writeKeptBlock`, which
// must come before any other write to the file.
void keepBlock(const TextBlock& block);
void writeKeptBlock();

} // namespace plot_data
