#include "tvncommon/hash/IHashTable.hpp"
#include "tvncommon/hash/MeshHashTable.hpp"

#include "tests/support/runs.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <random>
#include <string>

namespace {

using Nodes = std::vector<std::int32_t>;

void expectEnd(const std::string& message, const std::function<void()>& call) {
    EXPECT_THAT(runs::endingOf(call), testing::HasSubstr(message));
}

// Expects the entries of the reference from the iterator, and their number in all buckets.
template<class Kind>
void checkContents(const hash_chains::Table<Kind>& table,
                   const std::map<typename Kind::Key, std::int32_t>& reference) {
    ASSERT_EQ(sz(table), static_cast<std::int32_t>(reference.size()));
    EXPECT_EQ(empty(table), reference.empty());
    std::size_t iterated = 0, inBuckets = 0;
    typename Kind::View key{};
    typename Kind::Key own;
    std::int32_t value = 0;
    auto iterator = initIterator(table);
    for (; hasNextIterator(iterator); ++iterated) {
        nextIterator(table, iterator, key, value);
        Kind::store(key, own);
        ASSERT_EQ(reference.at(own), value);
    }
    EXPECT_EQ(iterated, reference.size());
    expectEnd("HashIterator: no next element", [&] { nextIterator(table, iterator, key, value); });
    for (std::int32_t b = 1; b <= bucketCount(table); ++b)
        inBuckets += static_cast<std::size_t>(bucketSize(table, b));
    EXPECT_EQ(inBuckets, reference.size());
    EXPECT_LE(loadFactor(table), hash_chains::maxLoadFactor());
}

// Thousands of operations in random order. `sorted` returns the key of the reference.
template<class Kind>
void compareWithMap(hash_chains::Table<Kind>& table, std::mt19937& random,
                    const std::function<typename Kind::Key()>& anyKey,
                    typename Kind::Key (*sorted)(typename Kind::Key)) {
    using Key = typename Kind::Key;
    std::map<Key, std::int32_t> reference;
    for (int step = 0; step < 8000; ++step) {
        const Key key = anyKey();
        const auto what = random() % 100, more = random() % 1000;
        if (what < 45) {
            insert(table, key, reference[sorted(key)] = step);
        } else if (what < 60) {
            erase(table, key);
            reference.erase(sorted(key));
        } else if (what < 62) {
            rehash(table, static_cast<std::int32_t>(more));
        } else if (what < 64) {
            reserve(table, static_cast<std::int32_t>(more));
        } else if (what < 65) {
            auto copy = table;
            insert(table, key, -1);
            table = copy;
            clear(copy);
        } else if (more == 0) {
            clear(table);
            reference.clear();
        }
        std::int32_t value = -7;
        bool found = false;
        get(table, key, value, found);
        ASSERT_EQ(found, reference.contains(sorted(key)));
        ASSERT_EQ(value, found ? reference.at(sorted(key)) : -7);
        ASSERT_EQ(holds(table, key), found);
        if (step % 500 == 0) checkContents(table, reference);
    }
    checkContents(table, reference);
    destroy(table);
    EXPECT_EQ(bucketCount(table), 0);
    EXPECT_FALSE(holds(table, {}));
}

std::int64_t alwaysTheFirst(std::int32_t, std::int32_t) {
    return 1;
}
std::int64_t byAbsoluteValue(std::int32_t buckets, std::int32_t key) {
    return std::abs(std::int64_t{key}) % buckets + 1;
}

TEST(IHashTable, EqualsTheStandardTable) {
    std::mt19937 random(1);
    for (const auto hash : {alwaysTheFirst, byAbsoluteValue})
        for (const std::int32_t range : {30, 2000}) {
            std::uniform_int_distribution<std::int32_t> anyKey(-range, range);
            IHashTable::Table table;
            init(table, 0, hash);
            compareWithMap(
                table, random, [&] { return anyKey(random); },
                [](std::int32_t key) { return key; });
        }
}

TEST(MeshHashTable, EqualsATableOfSortedKeys) {
    std::mt19937 random(2);
    const auto anyKey = [&] {
        Nodes nodes(random() % 5);
        for (std::int32_t& node : nodes) node = static_cast<std::int32_t>(random() % 9);
        return nodes;
    };
    const auto sorted = [](Nodes key) {
        std::ranges::sort(key);
        return key;
    };
    MeshHashTable::Table table;
    init(table, 5);
    compareWithMap(table, random, anyKey, sorted);
}

TEST(IHashTable, GrowsByPrimes) {
    IHashTable::Table table;
    IHashTable::init(table);
    EXPECT_EQ(bucketCount(table), 1000003);
    for (const auto& [atLeast, buckets] : {std::pair{6, 11}, {-1, 5}, {12, 23}, {5, 5}}) {
        IHashTable::init(table, atLeast);
        EXPECT_EQ(bucketCount(table), buckets) << atLeast;
    }
    EXPECT_EQ(IHashTable::getPrimeBucketCount(1164186218), 2147483647);
    EXPECT_EQ(IHashTable::getPrimeBucketCount(3000000000), 2147483647);
    for (const std::int32_t key : {1, 2, 3, 3}) insert(table, key, 10 * key);
    EXPECT_EQ(bucketCount(table), 5);
    insert(table, 6, 60);
    EXPECT_EQ(bucketCount(table), 11);
    reserve(table, 8); // not above the maximum load factor
    EXPECT_EQ(bucketCount(table), 11);
    reserve(table, 9);
    EXPECT_EQ(bucketCount(table), 23);
    rehash(table, 0);
    EXPECT_EQ(bucketCount(table), 11);
    rehash(table, 100);
    EXPECT_EQ(bucketCount(table), 199);
    checkContents(table, {{1, 10}, {2, 20}, {3, 30}, {6, 60}});
}

TEST(IHashTable, NewKeysAreFirstInTheirBucket) {
    IHashTable::Table table;
    init(table, 11);
    for (const std::int32_t key : {1, 12, 23, 0}) insert(table, key, key);
    Nodes keys;
    std::int32_t value = 0;
    for (auto iterator = initIterator(table); hasNextIterator(iterator);)
        nextIterator(table, iterator, keys.emplace_back(), value);
    EXPECT_EQ(keys, (Nodes{0, 23, 12, 1}));
}

TEST(IHashTable, InvalidBucketNumbersEndTheRun) {
    const std::string none = "IHashTable: there is no bucket ";
    IHashTable::Table table;
    erase(table, 1);
    EXPECT_FALSE(holds(table, 1));
    EXPECT_EQ(loadFactor(table), 0);
    expectEnd(none + "1 among 0", [&] { insert(table, 1, 1); });
    init(table, 5);
    for (const std::int32_t entries : {0, 1}) {
        expectEnd(none + "0 among 5", [&] { insert(table, -1, 1); });
        expectEnd(none + "-2 among 5", [&] { holds(table, -2147483647 - 1); });
        expectEnd(none + "0 among 5", [&] { erase(table, -1); });
        insert(table, 4, entries);
    }
    for (const std::int32_t bucket : {0, 6}) expectEnd(none, [&] { bucketSize(table, bucket); });
    const auto beyond = [](std::int32_t buckets, std::int32_t) {
        return std::int64_t{buckets} + 1;
    };
    init(table, 5, beyond);
    expectEnd(none + "6 among 5", [&] { insert(table, 1, 1); });
}

TEST(MeshHashTable, LongAndNegativeKeysNeedAnotherHashFunction) {
    using MeshHashTable::Kind;
    EXPECT_EQ(Kind::hash(997, Nodes{1, 2, 3}), 583);
    EXPECT_EQ(Kind::hash(2147483647, Nodes{5, 7}), 506952454);
    Nodes many(40);
    std::iota(many.begin(), many.end(), 1);
    const std::string none = "MeshHashTable: there is no bucket ";
    MeshHashTable::Table table;
    init(table, 5);
    expectEnd(none + "-2 among 5", [&] { insert(table, Nodes{-3}, 1); });
    expectEnd(none + "0 among 5", [&] { insert(table, std::span(many).first(9), 1); });
    init(table, 5, [](std::int32_t buckets, std::span<const std::int32_t> key) {
        return static_cast<std::int64_t>(key.size()) % buckets + 1;
    });
    insert(table, many, 3);
    std::ranges::reverse(many);
    EXPECT_TRUE(holds(table, many));
    many.back() = 41;
    EXPECT_FALSE(holds(table, many));
}

} // namespace
