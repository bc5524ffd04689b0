#include "tvncommon/hash/MeshHashTable.hpp"

#include <algorithm>
#include <utility>

namespace MeshHashTable {

namespace {

constexpr std::string_view keyName = "MeshHashTable ListNode key";

} // namespace

void sortKey(std::span<std::int32_t> key) {
    for (std::size_t i = 1; i < key.size(); ++i)
        for (std::size_t j = i; j > 0 && key[j] < key[j - 1]; --j) std::swap(key[j], key[j - 1]);
}

std::int64_t Kind::hash(std::int32_t bucketCount, View key) {
    const auto word = [&](std::size_t i) {
        return static_cast<std::uint64_t>(std::int64_t{key[i]});
    };
    std::uint64_t h = key.empty() ? 0 : word(0);
    // 2654435769 is 2^32 divided by the golden ratio, whose multiples spread evenly over 32 bits.
    for (std::size_t i = 1; i < key.size(); ++i)
        h ^= (h << 6) + (h >> 2) + word(i) + std::uint64_t{2654435769};
    return static_cast<std::int64_t>(h) % bucketCount + 1;
}

Kind::LookupKey::LookupKey(View given) {
    if (given.size() > few.size())
        ArrayHelpers::allocateArray(many, static_cast<std::int64_t>(given.size()), keyName);
    const std::span<std::int32_t> copy =
        many.empty() ? std::span(few).first(given.size()) : std::span(many);
    std::ranges::copy(given, copy.begin());
    sortKey(copy);
    key = copy;
}

bool Kind::same(const Key& a, View b) {
    return std::ranges::equal(a, b);
}

void Kind::store(View key, Key& own) {
    ArrayHelpers::allocateArray(own, static_cast<std::int64_t>(key.size()), keyName);
    std::ranges::copy(key, own.begin());
}

} // namespace MeshHashTable
