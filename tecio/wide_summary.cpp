#include "tecio/wide_summary.hpp"

#include "tecio/layout.hpp"

#include <array>
#include <cstring>

namespace tecio {

#if defined(__x86_64__) && defined(__GNUC__) && !defined(MESHRAKE_PORTABLE)

namespace {

using Words [[gnu::vector_size(32)]] = std::uint64_t;

template<class T>
struct Wide {
    using Values [[gnu::vector_size(32)]] = T;
};

constexpr std::size_t halfBlock = Checksum::blockBytes / 2;
constexpr std::size_t registers = halfBlock / sizeof(Words);

// Loads each block once and has the least values, greatest values and lanes in four registers each.
// checksum.cpp explains the maps of the lanes. A comparison with NaN is false and changes nothing.
template<class T, bool withChecksum>
[[gnu::target("avx2")]] void summarizeBlocks(std::int32_t type, const char* block, const char* end,
                                             Range& range, Checksum* checksum) {
    using Values = typename Wide<T>::Values;
    std::array<Values, registers> least, greatest;
    least.fill(Values{} + emptyLeast<T>);
    greatest.fill(Values{} + emptyGreatest<T>);
    std::array<Words, registers> lanes{};
    if constexpr (withChecksum) std::memcpy(&lanes, &checksum->lanes, halfBlock);
    for (; block < end; block += Checksum::blockBytes) {
        for (std::size_t i = 0; i < registers; ++i) {
            Values first, second;
            std::memcpy(&first, block + i * sizeof first, sizeof first);
            std::memcpy(&second, block + halfBlock + i * sizeof second, sizeof second);
            least[i] = first < least[i] ? first : least[i];
            least[i] = second < least[i] ? second : least[i];
            greatest[i] = first > greatest[i] ? first : greatest[i];
            greatest[i] = second > greatest[i] ? second : greatest[i];
            if constexpr (withChecksum) {
                const Words word = lanes[i] ^ reinterpret_cast<Words>(first);
                const Words mapped = (word << 15) ^ (word >> 17) ^ reinterpret_cast<Words>(second);
                lanes[i] = mapped ^ (mapped >> 11);
            }
        }
    }
    if constexpr (withChecksum) std::memcpy(&checksum->lanes, &lanes, halfBlock);
    constexpr std::int64_t count = halfBlock / sizeof(T);
    extend(range, {rangeOf(type, &least, count).least, rangeOf(type, &greatest, count).greatest});
}

template<class T>
void summarize(std::int32_t type, const char* block, std::int64_t bytes, Range& range,
               Checksum* checksum) {
    const char* end = block + bytes;
    if (!checksum) return summarizeBlocks<T, false>(type, block, end, range, nullptr);
    summarizeBlocks<T, true>(type, block, end, range, checksum);
    checksum->size += bytes;
}

} // namespace

std::int64_t summarizeWide(std::int32_t type, const void* values, std::int64_t count, Range& range,
                           Checksum* checksum) {
    const bool atBlock = !checksum || checksum->size % Checksum::blockBytes == 0;
    if (!atBlock || !__builtin_cpu_supports("avx2")) return 0;
    const std::int64_t each = valueBytes(type);
    const std::int64_t bytes = count * each / Checksum::blockBytes * Checksum::blockBytes;
    const auto* first = static_cast<const char*>(values);
    if (type == 1) summarize<float>(type, first, bytes, range, checksum);
    if (type == 2) summarize<double>(type, first, bytes, range, checksum);
    if (type == 3) summarize<std::int32_t>(type, first, bytes, range, checksum);
    return bytes / each;
}

#else

std::int64_t summarizeWide(std::int32_t, const void*, std::int64_t, Range&, Checksum*) {
    return 0;
}

#endif

} // namespace tecio
