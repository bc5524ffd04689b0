#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// Checksum of the data of a zone, with which a later run detects data that the disk lost or
// changed. It does not detect deliberate changes.
namespace tecio {

// State of the checksum of one array, whose bytes may be added in pieces of any length.
struct Checksum {
    static constexpr std::size_t laneCount = 16;
    static constexpr std::int64_t blockBytes = 256; // two 8-byte words for each lane
    std::array<std::uint64_t, laneCount> lanes{};
    std::array<char, blockBytes> partialBlock{};
    std::int64_t size = 0; // bytes so far
};

void addBytes(Checksum& checksum, const void* bytes, std::int64_t size);

// Returns the checksum of a zone, of the bytes before its arrays and of all arrays. It is never 0.
std::uint64_t zoneChecksum(std::string_view begin, const std::vector<Checksum>& arrays);

} // namespace tecio
