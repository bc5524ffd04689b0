#include "tvncommon/hash/hash_chains.hpp"

#include <array>
#include <cmath>

namespace hash_chains {

namespace {

constexpr std::array<std::int32_t, 29> primes{
    5,         11,        23,        47,         97,        199,      409,      823,
    1741,      3469,      6949,      14033,      28411,     57557,    116731,   236897,
    480881,    976369,    1982627,   4026031,    8175383,   16601593, 33712729, 68460391,
    139022417, 282312799, 573292817, 1164186217, 2147483647};

} // namespace

std::int32_t getPrimeBucketCount(std::int64_t n) {
    const auto found = std::ranges::lower_bound(primes, n);
    return found == primes.end() ? primes.back() : *found;
}

std::int64_t bucketsFor(std::int32_t entries) {
    return static_cast<std::int64_t>(std::ceil(static_cast<float>(entries) / maxLoadFactor()));
}

void noSuchBucket(std::int64_t bucket, std::int32_t count, const Names& names) {
    error::fatalError(std::string(names.table) + ": there is no bucket " + std::to_string(bucket) +
                      " among " + std::to_string(count));
}

} // namespace hash_chains
