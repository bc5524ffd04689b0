#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

// Checksum of the data of a zone, which shows a later run that the disk lost or changed some. It is
// no protection against intent.
namespace tecio {

// Of one array, whose bytes come in pieces of any length.
struct Checksum {
    static constexpr std::int64_t blockBytes = 64; // two 8-byte words for each lane
    std::array<std::uint64_t, 4> lanes{};
    std::array<char, blockBytes> partialBlock{};
    std::int64_t size = 0; // bytes so far
};

void addBytes(Checksum& checksum, const void* bytes, std::int64_t size);

// Of a zone from what precedes its arrays, and all of these; never 0.
std::uint64_t zoneChecksum(std::string_view begin, const std::vector<Checksum>& arrays);

} // namespace tecio
