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

// Chained hash tables from keys to 32-bit integers. `Kind` defines how a node stores a key (`Key`)
// and how a key is passed (`View`) and looked up (`LookupKey`). It also has the hash function, the
// comparison of keys and the names in messages. A failed allocation, and a hash function that does
// not return a bucket number, end the run.
namespace hash_chains {

// Names in messages.
struct Names {
    std::string_view table, iterator, buckets, node;
};

// Entry of a table. Nodes are numbered from 1 by their position in `Table::nodes`. The number 0 is
// the end of a list.
template<class Kind>
struct ListNode {
    typename Kind::Key key{};
    std::int32_t value = 0;
    std::int32_t next = 0;
};

template<class Kind>
struct Table {
    // Returns the bucket of a key, from 1 to `bucketCount`.
    using HashFunc = std::int64_t (*)(std::int32_t bucketCount, typename Kind::View key);

    std::int32_t bucketCount = 0;      // 0 before `init`
    std::int32_t size = 0;             // entries
    std::vector<std::int32_t> buckets; // first node of each
    HashFunc hashFunc = nullptr;       // used instead of Kind::hash, unless null
    std::vector<ListNode<Kind>> nodes;
    std::int32_t freeNode = 0; // first of the list of erased nodes
};

// Position in an iteration over all nodes, bucket by bucket. An insertion or erasure invalidates
// it.
struct Iterator {
    std::int32_t next = 0;  // next node, 0 at the end
    std::size_t bucket = 0; // bucket, from 0, after that of `next`
};

// Returns the first of a fixed list of primes that is not below `n`, or the last prime of the list.
std::int32_t getPrimeBucketCount(std::int64_t n);

// Returns the least number of buckets that keeps the load factor of this number of entries.
std::int64_t bucketsFor(std::int32_t entries);

constexpr std::int32_t maxBucketCount() {
    return 2147483647;
}

constexpr float maxLoadFactor() {
    return 0.75F; // entries per bucket
}

// Creates an empty table with at least `buckets` buckets, by default 1000003, and with another hash
// function if one is given. An insertion into a table without `init` ends the run.
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

// Removes all entries and keeps the buckets.
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

// Ends the run because `bucket` is not a bucket number.
[[noreturn]] void noSuchBucket(std::int64_t bucket, std::int32_t count, const Names& names);

// Returns the index, from 0, of a bucket number from 1 to `count`; any other number ends the run.
template<class Kind>
std::size_t bucketIndex(std::int64_t bucket, std::int32_t count) {
    if (bucket < 1 || bucket > count) noSuchBucket(bucket, count, Kind::names);
    return static_cast<std::size_t>(bucket) - 1;
}

// Returns the index, from 0, of a key's bucket in a table of `count` buckets.
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

// Returns the number of entries in a bucket.
template<class Kind>
std::int32_t bucketSize(const Table<Kind>& table, std::int32_t bucket) {
    std::int32_t count = 0;
    std::int32_t node = table.buckets[bucketIndex<Kind>(bucket, table.bucketCount)];
    for (; node > 0; node = nodeAt(table, node).next) ++count;
    return count;
}

template<class Kind>
std::int32_t allocateNode(Table<Kind>& table) {
    if (table.freeNode > 0)
        return std::exchange(table.freeNode, nodeAt(table, table.freeNode).next);
    try {
        table.nodes.emplace_back();
    } catch (const std::bad_alloc&) {
        ArrayHelpers::allocationFailed(Kind::names.node);
    }
    return static_cast<std::int32_t>(table.nodes.size());
}

// Returns the key's node in the list from `node` on, or 0.
template<class Kind>
std::int32_t findInList(const Table<Kind>& table, std::int32_t node, typename Kind::View key) {
    while (node > 0 && !Kind::same(nodeAt(table, node).key, key)) node = nodeAt(table, node).next;
    return node;
}

// Distributes the nodes to `count` buckets.
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

// Sets the number of buckets to at least `n`, and to enough for the present entries.
template<class Kind>
void rehash(Table<Kind>& table, std::int32_t n) {
    rehashWork(table, getPrimeBucketCount(std::max<std::int64_t>(n, bucketsFor(table.size))));
}

// Adds buckets until there are enough for `n` entries.
template<class Kind>
void reserve(Table<Kind>& table, std::int32_t n) {
    if (static_cast<float>(n) > static_cast<float>(table.bucketCount) * maxLoadFactor())
        rehashWork(table, getPrimeBucketCount(bucketsFor(n)));
}

// Inserts a key with its value; the value of an existing key is replaced.
template<class Kind>
void insert(Table<Kind>& table, typename Kind::View key, std::int32_t value) {
    if (table.bucketCount == 0) noSuchBucket(1, 0, Kind::names);
    const typename Kind::LookupKey lookup(key);
    std::int32_t& head = table.buckets[bucketOf(table, table.bucketCount, lookup.key)];
    const std::int32_t existing = findInList(table, head, lookup.key);
    if (existing > 0) {
        nodeAt(table, existing).value = value;
        return;
    }
    const std::int32_t added = allocateNode(table);
    ListNode<Kind>& node = nodeAt(table, added);
    Kind::store(lookup.key, node.key);
    node.value = value;
    node.next = std::exchange(head, added);
    ++table.size;
    const std::int32_t buckets = table.bucketCount;
    if (static_cast<float>(table.size) > static_cast<float>(buckets) * maxLoadFactor())
        rehashWork(table, getPrimeBucketCount(
                              std::max(std::int64_t{2} * buckets, bucketsFor(table.size))));
}

// Returns the node of a key, or 0.
template<class Kind>
std::int32_t find(const Table<Kind>& table, typename Kind::View key) {
    if (table.bucketCount == 0) return 0;
    const typename Kind::LookupKey lookup(key);
    return findInList(table, table.buckets[bucketOf(table, table.bucketCount, lookup.key)],
                      lookup.key);
}

// Returns the value of a key. For a missing key `found` is false and `value` is not changed.
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

// Removes a key; a missing key is ignored.
template<class Kind>
void erase(Table<Kind>& table, typename Kind::View key) {
    if (table.bucketCount == 0) return;
    const typename Kind::LookupKey lookup(key);
    std::int32_t* link = &table.buckets[bucketOf(table, table.bucketCount, lookup.key)];
    const std::int32_t erased = findInList(table, *link, lookup.key);
    if (erased == 0) return;
    while (*link != erased) link = &nodeAt(table, *link).next;
    ListNode<Kind>& node = nodeAt(table, erased);
    *link = node.next;
    node.key = {};
    node.next = std::exchange(table.freeNode, erased);
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

// Returns the next key and value and advances; a call after the last entry ends the run. `key`
// refers to the key in the table.
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
