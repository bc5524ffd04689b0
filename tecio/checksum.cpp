#include "tecio/checksum.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tecio {

namespace {

// Two words enter for each multiplication, the slowest step. Given one word, the result differs
// for each value of the other. The rotation of a word keeps the sign bits of two equal values from
// cancelling; that of the lane carries high bits down, which a product only moves up. The factor is
// 2^64 divided by the golden ratio, made odd.
std::uint64_t mixed(std::uint64_t lane, std::uint64_t first, std::uint64_t second) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    return std::rotl(((lane + first) ^ std::rotl(second, 32)) * factor, 29);
}

std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The lanes are independent, so that their multiplications overlap.
void addBlocks(Checksum& checksum, const char* bytes, std::int64_t size) {
    auto [a, b, c, d] = checksum.lanes;
    for (const char* end = bytes + size; bytes < end; bytes += Checksum::blockBytes) {
        a = mixed(a, wordAt(bytes), wordAt(bytes + 8));
        b = mixed(b, wordAt(bytes + 16), wordAt(bytes + 24));
        c = mixed(c, wordAt(bytes + 32), wordAt(bytes + 40));
        d = mixed(d, wordAt(bytes + 48), wordAt(bytes + 56));
    }
    checksum.lanes = {a, b, c, d};
}

std::uint64_t resultOf(Checksum checksum) {
    auto result = static_cast<std::uint64_t>(checksum.size);
    const std::int64_t partial = checksum.size % Checksum::blockBytes;
    if (partial > 0) {
        std::fill(checksum.partialBlock.begin() + partial, checksum.partialBlock.end(), '\0');
        addBlocks(checksum, checksum.partialBlock.data(), Checksum::blockBytes);
    }
    for (const std::uint64_t lane : checksum.lanes) result = mixed(result, lane, 0);
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
    for (const Checksum& array : arrays) result = mixed(result, resultOf(array), 0);
    return result | 1; // 0 means none
}

} // namespace tecio
