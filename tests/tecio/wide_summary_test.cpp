#include "tecio/wide_summary.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

// Compares the pass with 32-byte registers with the plain passes. In the portable build, and on a
// processor without such registers, the test is skipped.
namespace {

using namespace tecio;

template<class T>
std::vector<T> values(std::size_t count, bool special) {
    std::mt19937 random(7);
    std::vector<T> all(count);
    for (T& value : all) value = static_cast<T>(static_cast<int>(random() % 2001) - 1000);
    if (!special) return all;
    for (std::size_t i = 0; i < count; i += 3) all[i] = static_cast<T>(i % 2 == 0 ? -0.0 : 0.0);
    if constexpr (std::numeric_limits<T>::has_quiet_NaN)
        for (std::size_t i = 0; i < count; i += 2)
            all[i] = i % 128 == 0 ? std::numeric_limits<T>::infinity()
                                  : std::numeric_limits<T>::quiet_NaN();
    return all;
}

std::string bytes(const Range& range) {
    return std::string(reinterpret_cast<const char*>(&range), sizeof range);
}

template<class T>
void expectEqual(std::int32_t type, const std::vector<T>& all, std::size_t first) {
    const auto size = static_cast<std::int64_t>(sizeof(T));
    const T* from = all.data() + first;
    const auto count = static_cast<std::int64_t>(all.size() - first);
    Range range = rangeOf(type, nullptr, 0);
    Checksum checksum;
    const std::int64_t done = summarizeWide(type, from, count, range, &checksum);
    EXPECT_EQ(done, count * size / Checksum::blockBytes * Checksum::blockBytes / size);
    EXPECT_EQ(bytes(range), bytes(rangeOf(type, from, done)));
    Checksum plain;
    addBytes(plain, from, done * size);
    EXPECT_EQ(zoneChecksum("", {checksum}), zoneChecksum("", {plain}));
    Range alone = rangeOf(type, nullptr, 0);
    EXPECT_EQ(summarizeWide(type, from, count, alone, nullptr), done);
    EXPECT_EQ(bytes(alone), bytes(range));
    addBytes(checksum, all.data(), size); // half a block: the next values continue it
    EXPECT_EQ(summarizeWide(type, from, count, range, &checksum), 0);
}

TEST(WideSummary, EqualsThePlainPasses) {
    Range none = rangeOf(1, nullptr, 0);
    const std::vector<float> block(64);
    if (summarizeWide(1, block.data(), 64, none, nullptr) == 0) GTEST_SKIP() << "not available";
    for (const std::size_t count : {1U, 31U, 32U, 64U, 65U, 1000U})
        for (const bool special : {false, true}) {
            SCOPED_TRACE(count);
            expectEqual(1, values<float>(count, special), 0);
            expectEqual(2, values<double>(count, special), 1);
            expectEqual(3, values<std::int32_t>(count, special), 1);
        }
}

} // namespace
