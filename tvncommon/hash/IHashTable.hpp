#pragma once

#include "tvncommon/hash/hash_chains.hpp"

#include <cstdint>

// Hash table from 32-bit integers to 32-bit integers, with the functions of hash_chains.hpp.
namespace IHashTable {

struct Kind {
    using Key = std::int32_t;
    using View = std::int32_t;

    static constexpr hash_chains::Names names{"IHashTable", "IHashIterator",
                                              "IHashTable bucket array", "IHashTable node"};

    // The key modulo the bucket count, plus 1. A negative key has no bucket and ends the run.
    static std::int64_t hash(std::int32_t bucketCount, View key) {
        return std::int64_t{key % bucketCount} + 1;
    }

    struct LookupKey {
        View key;
        explicit LookupKey(View given) : key(given) {}
    };
    static bool same(Key a, View b) { return a == b; }
    static void store(View key, Key& own) { own = key; }
};

using Table = hash_chains::Table<Kind>;
using namespace hash_chains;

} // namespace IHashTable
