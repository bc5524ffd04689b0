#include "meshrake/plot_data/text_block.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"

#include <algorithm>
#include <utility>

namespace plot_data {

using model::run;

namespace {

// Large writes take less time for the same text: one of a mebibyte took a fifth less than eight of
// 128 KiB each, one of 4 MiB a tenth less than four of a mebibyte each.
constexpr std::size_t blockSize = 4194304;

char* blockBegin() {
    return run.writeBuffer.data();
}

} // namespace

TextBlock beginBlock(int unit) {
    if (run.writeBuffer.empty())
        ArrayHelpers::allocateArray(run.writeBuffer, blockSize, "write buffer");
    if (run.keptText.unit != unit) writeKeptBlock();
    const std::size_t kept = std::exchange(run.keptText.bytes, 0);
    return {unit, blockBegin() + kept};
}

std::int64_t ensureSpace(TextBlock& block, std::int64_t rowBytes) {
    const std::int64_t space = blockBegin() + blockSize - block.end;
    if (space >= rowBytes) return space / rowBytes;
    writeBlock(block);
    return static_cast<std::int64_t>(blockSize) / rowBytes;
}

void appendLine(TextBlock& block, std::string_view line) {
    ensureSpace(block, static_cast<std::int64_t>(line.size()) + 1);
    block.end = std::copy(line.begin(), line.end(), block.end);
    *block.end++ = '\n';
}

void writeBlock(TextBlock& block) {
    const auto size = static_cast<std::size_t>(block.end - blockBegin());
    if (size > 0) file_units::writeBlock(block.unit, blockBegin(), size);
    block.end = blockBegin();
}

void keepBlock(const TextBlock& block) {
    run.keptText = {block.unit, static_cast<std::size_t>(block.end - blockBegin())};
}

void writeKeptBlock() {
    const std::size_t kept = std::exchange(run.keptText.bytes, 0);
    if (kept > 0) file_units::writeBlock(run.keptText.unit, blockBegin(), kept);
}

} // namespace plot_data
