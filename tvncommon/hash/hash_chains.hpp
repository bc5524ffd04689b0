#pragma once

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Chained hash tables from a kind of keys to 32-bit integers. `Kind` tells how a node owns a key
// (`Key`) and how one is handed over (`View`), which names stand in messages, and when two keys are
// the same. Memory that is not there ends the run, and so does a hash function that gives a number
// which is that of no bucket.
namespace hash_chains {

// Names that stand in messages.
struct Names {
    std::string_view table, iterator, buckets, node;
};

// Nodes are known by their place in the table's store, from 1; 0 stands for the end of a list.
template<class Kind>
struct ListNode {
    typename Kind::Key key{};
    std::int32_t value = 0;
    std::int32_t next = 0;
};

template<class Kind>
struct Table {
    // Tells the bucket, from 1 on, of a key among so many.
    using HashFunc = std::int64_t (*)(std::int32_t bucketCount, typename Kind::View key);

    std::int32_t bucketCount = 0;      // 0 before `init`
    std::int32_t size = 0;             // entries
    std::vector<std::int32_t> buckets; // first node of each
    HashFunc hashFunc = nullptr;       // in the place of Kind::hash
    std::vector<ListNode<Kind>> nodes;
    std::int32_t freeNode = 0; // first in the list of those that erasures left behind
};

// Goes over the buckets and along the list of each. An insertion or erasure ends its use.
struct Iterator {
    std::int32_t next = 0;  // node
    std::size_t bucket = 0; // of those behind that of `next`
};

// The first of a fixed list of primes that is not below `n`, or the last one.
std::int32_t getPrimeBucketCount(std::int64_t n);

// The least number of buckets for so many entries.
std::int64_t bucketsFor(std::int32_t entries);

constexpr std::int32_t maxBucketCount() {
    return 2147483647;
}

constexpr float maxLoadFactor() {
    return 0.75F; // entries for a bucket
}

// An empty table with at least `buckets` buckets, or with 1000003, and another hash function where
// one is given. Must come before an insertion.
template<class Kind>
void init(Table<Kind>& table, std::optional<std::int32_t> buckets = {},
          typename Table<Kind>::HashFunc hashFunc = nullptr) {
    table = {};
    const std::int32_t count = buckets ? getPrimeBucketCount(*buckets) : 1000003;
    ArrayHelpers::allocateArray(table.buckets, count, Kind::names.buckets);
    table.bucketCount = count;
    table.hashFunc = hashFunc;
}

template<class Kind>
void destroy(Table<Kind>& table) {
    table = {};
}

// Takes all entries out and keeps the buckets.
template<class Kind>
void clear(Table<Kind>& table) {
    std::ranges::fill(table.buckets, 0);
    table.nodes.clear();
    table.size = table.freeNode = 0;
}

template<class Kind>
bool empty(const Table<Kind>& table) {
    return table.size == 0;
}

template<class Kind>
std::int32_t sz(const Table<Kind>& table) {
    return table.size;
}

template<class Kind>
std::int32_t bucketCount(const Table<Kind>& table) {
    return table.bucketCount;
}

template<class Kind>
float loadFactor(const Table<Kind>& table) {
    if (table.bucketCount == 0) return 0;
    return static_cast<float>(table.size) / static_cast<float>(table.bucketCount);
}

// Ends the run for a number that is that of no bucket.
[[noreturn]] void noSuchBucket(std::int64_t bucket, std::int32_t count, const Names& names);

// Place of a bucket, from 1, in an array of so many.
template<class Kind>
std::size_t bucketIndex(std::int64_t bucket, std::int32_t count) {
    if (bucket < 1 || bucket > count) noSuchBucket(bucket, count, Kind::names);
    return static_cast<std::size_t>(bucket) - 1;
}

// Place of a key's bucket among `count`.
template<class Kind>
std::size_t bucketOf(const Table<Kind>& table, std::int32_t count, typename Kind::View key) {
    return bucketIndex<Kind>(table.hashFunc ? table.hashFunc(count, key) : Kind::hash(count, key),
                             count);
}

template<class Kind>
ListNode<Kind>& nodeAt(Table<Kind>& table, std::int32_t node) {
    return table.nodes[static_cast<std::size_t>(node) - 1];
}

template<class Kind>
const ListNode<Kind>& nodeAt(const Table<Kind>& table, std::int32_t node) {
    return table.nodes[static_cast<std::size_t>(node) - 1];
}

// Entries in a bucket.
template<class Kind>
std::int32_t bucketSize(const Table<Kind>& table, std::int32_t bucket) {
    std::int32_t count = 0;
    std::int32_t node = table.buckets[bucketIndex<Kind>(bucket, table.bucketCount)];
    for (; node > 0; node = nodeAt(table, node).next) ++count;
    return count;
}

template<class Kind>
std::int32_t takeNode(Table<Kind>& table) {
    if (table.freeNode > 0)
        return std::exchange(table.freeNode, nodeAt(table, table.freeNode).next);
    try {
        table.nodes.emplace_back();
    } catch (const std::bad_alloc&) {
        ArrayHelpers::allocationFailed(Kind::names.node);
    }
    return static_cast<std::int32_t>(table.nodes.size());
}

// The key's node in the list from `node` on, 0 when it is in none.
template<class Kind>
std::int32_t findInList(const Table<Kind>& table, std::int32_t node, typename Kind::View key) {
    while (node > 0 && !Kind::same(nodeAt(table, node).key, key)) node = nodeAt(table, node).next;
    return node;
}

// Moves every node into its bucket among `count`.
template<class Kind>
void rehashWork(Table<Kind>& table, std::int32_t count) {
    if (count == table.bucketCount) return;
    std::vector<std::int32_t> buckets;
    ArrayHelpers::allocateArray(buckets, count, Kind::names.buckets);
    for (std::int32_t node : table.buckets)
        while (node > 0) {
            ListNode<Kind>& moved = nodeAt(table, node);
            std::int32_t& head = buckets[bucketOf(table, count, moved.key)];
            const std::int32_t next = std::exchange(moved.next, head);
            head = std::exchange(node, next);
        }
    table.buckets.swap(buckets);
    table.bucketCount = count;
}

// Room for the entries there are, in at least `n` buckets.
template<class Kind>
void rehash(Table<Kind>& table, std::int32_t n) {
    rehashWork(table, getPrimeBucketCount(std::max<std::int64_t>(n, bucketsFor(table.size))));
}

// Room for `n` entries.
template<class Kind>
void reserve(Table<Kind>& table, std::int32_t n) {
    if (static_cast<float>(n) > static_cast<float>(table.bucketCount) * maxLoadFactor())
        rehashWork(table, getPrimeBucketCount(bucketsFor(n)));
}

// A key that is there already takes the new value.
template<class Kind>
void insert(Table<Kind>& table, typename Kind::View key, std::int32_t value) {
    if (table.bucketCount == 0) noSuchBucket(1, 0, Kind::names);
    const typename Kind::Prepared prepared(key);
    std::int32_t& head = table.buckets[bucketOf(table, table.bucketCount, prepared.key)];
    const std::int32_t there = findInList(table, head, prepared.key);
    if (there > 0) {
        nodeAt(table, there).value = value;
        return;
    }
    const std::int32_t added = takeNode(table);
    ListNode<Kind>& node = nodeAt(table, added);
    Kind::keep(prepared.key, node.key);
    node.value = value;
    node.next = std::exchange(head, added);
    ++table.size;
    const std::int32_t buckets = table.bucketCount;
    if (static_cast<float>(table.size) > static_cast<float>(buckets) * maxLoadFactor())
        rehashWork(table, getPrimeBucketCount(
                              std::max(std::int64_t{2} * buckets, bucketsFor(table.size))));
}

template<class Kind>
std::int32_t find(const Table<Kind>& table, typename Kind::View key) {
    if (table.bucketCount == 0) return 0;
    const typename Kind::Prepared prepared(key);
    return findInList(table, table.buckets[bucketOf(table, table.bucketCount, prepared.key)],
                      prepared.key);
}

// Leaves `value` as it is for a key that is not there.
template<class Kind>
void get(const Table<Kind>& table, typename Kind::View key, std::int32_t& value, bool& found) {
    const std::int32_t node = find(table, key);
    found = node > 0;
    if (found) value = nodeAt(table, node).value;
}

template<class Kind>
bool holds(const Table<Kind>& table, typename Kind::View key) {
    return find(table, key) > 0;
}

// Does nothing for a key that is not there.
template<class Kind>
void erase(Table<Kind>& table, typename Kind::View key) {
    if (table.bucketCount == 0) return;
    const typename Kind::Prepared prepared(key);
    std::int32_t* link = &table.buckets[bucketOf(table, table.bucketCount, prepared.key)];
    const std::int32_t there = findInList(table, *link, prepared.key);
    if (there == 0) return;
    while (*link != there) link = &nodeAt(table, *link).next;
    ListNode<Kind>& node = nodeAt(table, there);
    *link = node.next;
    node.key = {};
    node.next = std::exchange(table.freeNode, there);
    --table.size;
}

template<class Kind>
void enterNextBucket(const Table<Kind>& table, Iterator& iterator) {
    while (iterator.next == 0 && iterator.bucket < table.buckets.size())
        iterator.next = table.buckets[iterator.bucket++];
}

template<class Kind>
Iterator initIterator(const Table<Kind>& table) {
    Iterator iterator;
    enterNextBucket(table, iterator);
    return iterator;
}

inline bool hasNextIterator(const Iterator& iterator) {
    return iterator.next > 0;
}

// The next key and value; going on behind the last ones ends the run. The key is the node's own.
template<class Kind>
void nextIterator(const Table<Kind>& table, Iterator& iterator, typename Kind::View& key,
                  std::int32_t& value) {
    if (iterator.next == 0)
        error::fatalError(std::string(Kind::names.iterator) + ": no next element");
    const ListNode<Kind>& node = nodeAt(table, iterator.next);
    key = node.key;
    value = node.value;
    iterator.next = node.next;
    enterNextBucket(table, iterator);
}

} // namespace hash_chains
