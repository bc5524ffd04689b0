#include "tecio/checksum.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tecio {

namespace {

std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Each block adds two words to a lane. A linear map of the 64 bits follows each of them. A map
// takes few instructions, for several lanes at once in a wide register; multiplications would take
// twice the time. Linear means that only the bits that changed decide whether a change is detected:
//
// - Both maps together have an irreducible characteristic polynomial, of order (2^64 - 1) / 3. So a
//   lane is a cyclic redundancy check of 64 bits: no later words cancel the change of one word, and
//   the same change of block after block does not cancel itself.
// - The first map changes each word, so that equal changes of both words do not cancel each other.
//   A rotation would keep a word of ones, and a single shift would drop bits.
// - The second map keeps only words below 2^11. Changes of any one of the bits 11 to 63, for
//   instance of the sign, are detected in any combination of 32 words of a lane in a row.
void addBlocks(Checksum& checksum, const char* bytes, std::int64_t size) {
    constexpr std::size_t n = Checksum::laneCount;
    auto lanes = checksum.lanes;
    for (const char* end = bytes + size; bytes < end; bytes += Checksum::blockBytes) {
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint64_t first = lanes[i] ^ wordAt(bytes + 8 * i);
            const std::uint64_t second =
                (first << 15) ^ (first >> 17) ^ wordAt(bytes + 8 * (n + i));
            lanes[i] = second ^ (second >> 11);
        }
    }
    checksum.lanes = lanes;
}

// Returns a result that, for a given hash, is different for each `word`. A product moves
// differences only to higher bits; the rotation moves them back to lower bits. The factor is the
// odd integer next to 2^64 divided by the golden ratio.
std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    return std::rotl((hash + word) * factor, 29);
}

std::uint64_t resultOf(Checksum checksum) {
    auto result = static_cast<std::uint64_t>(checksum.size);
    const std::int64_t partial = checksum.size % Checksum::blockBytes;
    if (partial > 0) {
        std::fill(checksum.partialBlock.begin() + partial, checksum.partialBlock.end(), '\0');
        addBlocks(checksum, checksum.partialBlock.data(), Checksum::blockBytes);
    }
    for (const std::uint64_t lane : checksum.lanes) result = mixed(result, lane);
    return result;
}

} // namespace

void addBytes(Checksum& checksum, const void* from, std::int64_t size) {
    const char* bytes = static_cast<const char*>(from);
    const std::int64_t partial = checksum.size % Checksum::blockBytes;
    checksum.size += size;
    if (partial > 0) {
        const std::int64_t n = std::min(size, Checksum::blockBytes - partial);
        std::copy_n(bytes, n, checksum.partialBlock.begin() + partial);
        bytes += n;
        size -= n;
        if (partial + n < Checksum::blockBytes) return;
        addBlocks(checksum, checksum.partialBlock.data(), Checksum::blockBytes);
    }
    const std::int64_t rest = size % Checksum::blockBytes;
    addBlocks(checksum, bytes, size - rest);
    std::copy_n(bytes + size - rest, rest, checksum.partialBlock.begin());
}

std::uint64_t zoneChecksum(std::string_view begin, const std::vector<Checksum>& arrays) {
    Checksum first;
    addBytes(first, begin.data(), static_cast<std::int64_t>(begin.size()));
    std::uint64_t result = resultOf(first);
    for (const Checksum& array : arrays) result = mixed(result, resultOf(array));
    return result | 1; // 0 in the sidecar means that there is no checksum
}

} // namespace tecio
