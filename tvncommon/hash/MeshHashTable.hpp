#pragma once

#include "tvncommon/hash/hash_chains.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Hash table from lists of node numbers, such as the faces and edges of a mesh, to 32-bit integers,
// with the functions of hash_chains.hpp. The same nodes in another order are the same key.
namespace MeshHashTable {

// Sorts the nodes of a key in ascending order.
void sortKey(std::span<std::int32_t> key);

struct Kind {
    using Key = std::vector<std::int32_t>;
    using View = std::span<const std::int32_t>; // of a key in a table: sorted

    static constexpr hash_chains::Names names{"MeshHashTable", "MeshHashIterator",
                                              "MeshHashTable bucket array", "MeshHashTable node"};

    // Combines the nodes of a sorted key. Keys of more than six nodes and negative numbers may have
    // no bucket, which ends the run.
    static std::int64_t hash(std::int32_t bucketCount, View key);

    // A sorted copy of a key, without allocation for up to 16 nodes.
    struct LookupKey {
        std::array<std::int32_t, 16> few;
        Key many; // used for more than 16 nodes
        View key; // of the one that is used
        explicit LookupKey(View given);
        LookupKey(const LookupKey&) = delete;
        LookupKey& operator=(const LookupKey&) = delete;
    };
    static bool same(const Key& a, View b);
    static void store(View key, Key& own);
};

using Table = hash_chains::Table<Kind>;
using namespace hash_chains;

} // namespace MeshHashTable
