#include "bench/side_by_side.hpp"
#include "tvncommon/hash/IHashTable.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t keyCount = 10000000;
constexpr double limit = 1;

using Keys = std::vector<std::int32_t>;
using OtherTable = std::unordered_map<std::int32_t, std::int32_t>;

Keys randomKeys() {
    std::mt19937 random(1);
    std::uniform_int_distribution<std::int32_t> any(0, 2147483647);
    Keys keys(keyCount);
    for (std::int32_t& key : keys) key = any(random);
    return keys;
}

void fill(const Keys& keys, IHashTable::Table& table) {
    IHashTable::init(table);
    for (std::size_t i = 0; i < keys.size(); ++i)
        IHashTable::insert(table, keys[i], static_cast<std::int32_t>(i));
}

void fillOther(const Keys& keys, OtherTable& table) {
    for (std::size_t i = 0; i < keys.size(); ++i)
        table.insert_or_assign(keys[i], static_cast<std::int32_t>(i));
}

std::int64_t sum(const Keys& keys, const IHashTable::Table& table) {
    std::int64_t total = 0;
    for (const std::int32_t key : keys) {
        std::int32_t value = 0;
        bool found = false;
        IHashTable::get(table, key, value, found);
        total += value;
    }
    return total;
}

std::int64_t sumOther(const Keys& keys, const OtherTable& table) {
    std::int64_t total = 0;
    for (const std::int32_t key : keys) {
        const auto found = table.find(key);
        if (found != table.end()) total += found->second;
    }
    return total;
}

} // namespace

int main() {
    using side_by_side::compare;
    const Keys keys = randomKeys();
    IHashTable::Table table;
    OtherTable other;
    fill(keys, table);
    fillOther(keys, other);
    std::int64_t ours = 0, theirs = 0;
    std::printf("%zu random keys\n", keyCount);
    side_by_side::printHeadings("unordered_map");
    bool held = compare(
        "insert", limit,
        [&] {
            IHashTable::Table one;
            fill(keys, one);
        },
        [&] {
            OtherTable one;
            fillOther(keys, one);
        });
    Keys mixed = keys;
    std::ranges::shuffle(mixed, std::mt19937(2));
    for (const Keys* order : {&keys, &std::as_const(mixed)})
        held &= compare(
            order == &keys ? "get, in the order of insertion" : "get, in another order", limit,
            [&] { ours += sum(*order, table); }, [&] { theirs += sumOther(*order, other); });
    if (ours == theirs && static_cast<std::size_t>(IHashTable::sz(table)) == other.size())
        return held ? EXIT_SUCCESS : EXIT_FAILURE;
    std::printf("the results of the two tables differ\n");
    return EXIT_FAILURE;
}
