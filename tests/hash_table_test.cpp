#include "tvncommon/IHashTable.hpp"
#include "tvncommon/MeshHashTable.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <unordered_map>

namespace {

using Nodes = std::vector<std::int32_t>;

void expectEnd(const std::string& message, const std::function<void()>& call) {
    testing::internal::CaptureStderr();
    EXPECT_THROW(call(), error::RunEnded) << message;
    const std::string banner = testing::internal::GetCapturedStderr();
    EXPECT_NE(banner.find("FATAL ERROR"), std::string::npos);
    EXPECT_NE(banner.find(message), std::string::npos) << banner;
}

// Every entry by way of the iterator, and the entries of all buckets.
template<class Kind, class Reference>
void checkContents(const hash_chains::Table<Kind>& table, const Reference& reference) {
    ASSERT_EQ(sz(table), static_cast<std::int32_t>(reference.size()));
    EXPECT_EQ(empty(table), reference.empty());
    std::size_t seen = 0, inBuckets = 0;
    auto iterator = initIterator(table);
    for (; hasNextIterator(iterator); ++seen) {
        typename Kind::View key{};
        std::int32_t value = 0;
        nextIterator(table, iterator, key, value);
        typename Kind::Key own;
        Kind::keep(key, own);
        ASSERT_EQ(reference.at(own), value);
    }
    EXPECT_EQ(seen, reference.size());
    for (std::int32_t b = 1; b <= bucketCount(table); ++b)
        inBuckets += static_cast<std::size_t>(bucketSize(table, b));
    EXPECT_EQ(inBuckets, reference.size());
    EXPECT_LE(loadFactor(table), hash_chains::maxLoadFactor());
}

std::int64_t alwaysTheFirst(std::int32_t, std::int32_t) {
    return 1;
}
std::int64_t byAbsoluteValue(std::int32_t buckets, std::int32_t key) {
    return std::abs(std::int64_t{key}) % buckets + 1;
}

TEST(IHashTable, AgreesWithTheStandardTable) {
    std::mt19937 random(1);
    for (const auto hash : {alwaysTheFirst, byAbsoluteValue})
        for (const std::int32_t range : {30, 2000}) {
            std::uniform_int_distribution<std::int32_t> anyKey(-range, range), anyValue,
                percent(0, 99);
            IHashTable::Table table;
            init(table, 0, hash);
            std::unordered_map<std::int32_t, std::int32_t> reference;
            for (int step = 0; step < 6000; ++step) {
                const std::int32_t key = anyKey(random), what = percent(random);
                if (what < 45) {
                    insert(table, key, reference[key] = anyValue(random));
                } else if (what < 60) {
                    erase(table, key);
                    reference.erase(key);
                } else if (what == 60) {
                    rehash(table, percent(random));
                } else if (what == 61) {
                    reserve(table, 10 * percent(random));
                } else if (what == 62 && percent(random) < 10) {
                    clear(table);
                    reference.clear();
                } else if (what == 63) {
                    IHashTable::Table copy = table;
                    insert(table, key, -1);
                    table = copy;
                    clear(copy);
                } else {
                    std::int32_t value = -7;
                    bool found = false;
                    get(table, key, value, found);
                    ASSERT_EQ(found, reference.contains(key));
                    ASSERT_EQ(value, found ? reference.at(key) : -7);
                    ASSERT_EQ(holds(table, key), found);
                }
                if (step % 500 == 0) checkContents(table, reference);
            }
            checkContents(table, reference);
            destroy(table);
            EXPECT_EQ(bucketCount(table), 0);
            EXPECT_FALSE(holds(table, 1));
        }
}

TEST(IHashTable, GrowsByPrimes) {
    IHashTable::Table table;
    IHashTable::init(table);
    EXPECT_EQ(bucketCount(table), 1000003);
    for (const auto& [wanted, buckets] : {std::pair{6, 11}, {5, 5}, {-1, 5}, {12, 23}}) {
        IHashTable::init(table, wanted);
        EXPECT_EQ(bucketCount(table), buckets) << wanted;
    }
    EXPECT_EQ(IHashTable::getPrimeBucketCount(1164186218), 2147483647);
    EXPECT_EQ(IHashTable::getPrimeBucketCount(3000000000), 2147483647);
    IHashTable::init(table, 5);
    for (const std::int32_t key : {1, 2, 3, 3}) insert(table, key, 10 * key);
    EXPECT_EQ(sz(table), 3);
    EXPECT_EQ(bucketCount(table), 5);
    insert(table, 6, 60);
    EXPECT_EQ(bucketCount(table), 11);
    reserve(table, 8); // not over three quarters
    EXPECT_EQ(bucketCount(table), 11);
    reserve(table, 9);
    EXPECT_EQ(bucketCount(table), 23);
    rehash(table, 0);
    EXPECT_EQ(bucketCount(table), 11);
    rehash(table, 100);
    EXPECT_EQ(bucketCount(table), 199);
    checkContents(table, std::map<std::int32_t, std::int32_t>{{1, 10}, {2, 20}, {3, 30}, {6, 60}});
}

TEST(IHashTable, NewKeysStandInFrontOfTheirList) {
    IHashTable::Table table;
    init(table, 11);
    for (const std::int32_t key : {1, 12, 23, 0}) insert(table, key, key);
    Nodes keys;
    for (auto iterator = initIterator(table); hasNextIterator(iterator);) {
        std::int32_t value = 0;
        nextIterator(table, iterator, keys.emplace_back(), value);
    }
    EXPECT_EQ(keys, (Nodes{0, 23, 12, 1}));
}

std::int64_t outside(std::int32_t buckets, std::int32_t key) {
    return std::int64_t{buckets} + key;
}

TEST(IHashTable, NumbersOfNoBucketEndTheRun) {
    IHashTable::Table table;
    expectEnd("IHashTable: there is no bucket 1 among 0", [&] { insert(table, 1, 1); });
    init(table, 5);
    expectEnd("IHashTable: there is no bucket 0 among 5", [&] { holds(table, -1); });
    insert(table, 4, 1);
    for (const std::int32_t key : {-1, -2147483647 - 1}) {
        expectEnd("IHashTable: there is no bucket", [&] { insert(table, key, 1); });
        expectEnd("IHashTable: there is no bucket", [&] { holds(table, key); });
        expectEnd("IHashTable: there is no bucket", [&] { erase(table, key); });
    }
    for (const std::int32_t bucket : {0, 6})
        expectEnd("IHashTable: there is no bucket", [&] { bucketSize(table, bucket); });
    init(table, 5, outside);
    insert(table, 0, 1);
    expectEnd("IHashTable: there is no bucket 6 among 5", [&] { insert(table, 1, 1); });
    auto iterator = initIterator(table);
    std::int32_t key = 0, value = 0;
    nextIterator(table, iterator, key, value);
    expectEnd("IHashIterator: no next element", [&] { nextIterator(table, iterator, key, value); });
}

TEST(MeshHashTable, AgreesWithSortedKeys) {
    std::mt19937 random(2);
    MeshHashTable::Table table;
    init(table, 5);
    std::map<Nodes, std::int32_t> reference;
    for (int step = 0; step < 8000; ++step) {
        Nodes nodes(random() % 5);
        for (std::int32_t& node : nodes) node = static_cast<std::int32_t>(random() % 9);
        Nodes key = nodes;
        std::ranges::sort(key);
        if (random() % 3 > 0) {
            insert(table, nodes, reference[key] = step);
        } else {
            erase(table, nodes);
            reference.erase(key);
        }
        std::ranges::shuffle(nodes, random);
        std::int32_t value = -7;
        bool found = false;
        get(table, nodes, value, found);
        ASSERT_EQ(found, reference.contains(key));
        ASSERT_EQ(value, found ? reference.at(key) : -7);
    }
    checkContents(table, reference);
    const MeshHashTable::Table copy = table;
    clear(table);
    checkContents(copy, reference);
    EXPECT_TRUE(holds(copy, reference.begin()->first));
}

std::int64_t byLength(std::int32_t buckets, std::span<const std::int32_t> key) {
    return static_cast<std::int64_t>(key.size()) % buckets + 1;
}

TEST(MeshHashTable, LongAndNegativeKeysNeedAnotherHashFunction) {
    Nodes many;
    for (std::int32_t i = 0; i < 40; ++i) many.push_back(1000000 + 7 * i);
    int refused = 0;
    for (std::int32_t i = 0; i < 40; ++i) {
        many.push_back(i);
        MeshHashTable::Table table;
        init(table, 5);
        testing::internal::CaptureStderr();
        try {
            insert(table, many, i);
            EXPECT_TRUE(holds(table, many));
        } catch (const error::RunEnded&) {
            ++refused;
        }
        testing::internal::GetCapturedStderr();
    }
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, 40);
    MeshHashTable::Table table;
    init(table, 5);
    expectEnd("MeshHashTable: there is no bucket -2 among 5", [&] { insert(table, Nodes{-3}, 1); });
    init(table, 5, byLength);
    insert(table, many, 3);
    std::ranges::reverse(many);
    EXPECT_TRUE(holds(table, many));
    many.back() += 1;
    EXPECT_FALSE(holds(table, many));
    auto iterator = initIterator(table);
    MeshHashTable::Kind::View key;
    std::int32_t value = 0;
    nextIterator(table, iterator, key, value);
    EXPECT_TRUE(std::ranges::is_sorted(key));
    expectEnd("MeshHashIterator: no next element",
              [&] { nextIterator(table, iterator, key, value); });
}

} // namespace
