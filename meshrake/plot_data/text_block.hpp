#pragma once

#include <cstdint>
#include <string_view>

// The block of text that goes to a file next. It stands in the buffer of the run, which holds
// nothing between two uses.
namespace plot_data {

struct TextBlock {
    int unit;
    char* end; // behind the last character
};

// An empty block for the file of `unit`.
TextBlock beginBlock(int unit);

// Ensures space for a row of `rowBytes` bytes: a block that is too full is written and emptied.
// Returns how many such rows fit.
std::int64_t ensureSpace(TextBlock& block, std::int64_t rowBytes);

void appendLine(TextBlock& block, std::string_view line);

// Writes what the block holds. A failure ends the run.
void writeBlock(TextBlock& block);

} // namespace plot_data
