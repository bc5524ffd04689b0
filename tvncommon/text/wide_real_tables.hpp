#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

// The decades of the 17-digit conversion of number_formats and the one rounding it rests on.
//
// The digits of x are round(x * 10^power), `power` being 16 less the decimal exponent of x. Powers
// stand in a table as 128-bit significands, so two multiplications give the digits as an integer
// and 128 bits of fraction. This is the fixed-precision scheme of Ryu (Adams, PLDI 2018; "Ryu
// revisited", OOPSLA 2019) and Schubfach (Giulietti, 2020), laid out for a fixed number of digits.
//
// Why this decides every rounding. x is multiplier * 2^-(scaleBinade + 1) with a multiplier below
// 2^58, and the product is multiplier * significand / 2^128.
// - Powers 0 to 55 are exact in 128 bits. So is the product, and a tie is seen as one.
// - Other significands are rounded up, so the product is too great by less than 2^-70. It would be
//   rounded wrongly only if its fraction lay less than that above one half. That no double comes
//   there is a statement on multiplier * significand modulo 2^128, for which
//   tools/prove_wide_real.cpp looks at every pair of binade and decade. None of them is a tie.
namespace wide_real_tables {

__extension__ using uint128 = unsigned __int128;

// The doubles whose 17 digits, rounded, begin at the place of one power of ten.
struct alignas(32) Decade {
    std::uint64_t scaleHigh = 0; // 10^power as a 128-bit significand with its top bit set
    std::uint64_t scaleLow = 0;
    std::uint64_t next = 0;       // bits of the smallest double of the decade above
    std::int16_t scaleBinade = 0; // floor(log2(10^power))
    std::uint8_t pointAt = 0;     // number of digits in front of the decimal point
    std::array<char, 5> tail{};   // "E+ddd", or blanks for a decade in fixed notation
};

inline constexpr int leastDecade = -324; // of the smallest subnormal number
inline constexpr int greatestDecade = 308;
using Decades = std::array<Decade, greatestDecade - leastDecade + 1>;

extern const Decades decades;

// A positive finite double as significand * 2^(binade - 63), the significand's top bit set.
struct Normalized {
    std::uint64_t significand;
    int binade;
};

constexpr Normalized normalize(std::uint64_t bits) {
    const int biased = static_cast<int>(bits >> 52);
    if (biased != 0) return {bits << 11 | std::uint64_t{1} << 63, biased - 1023};
    const int zeros = std::countl_zero(bits);
    return {bits << zeros, -1011 - zeros};
}

// The decade of a positive finite double, from its bits and its binade.
inline const Decade& decadeOf(std::uint64_t bits, int binade) {
    // 78913 / 2^18 is log10(2): the decade of 2^binade, which x may have left for the next one.
    constexpr int offset = -leastDecade * (1 << 18);
    const auto lower = static_cast<std::size_t>((binade * 78913 + offset) >> 18);
    return decades[lower + (bits >= decades[lower].next)];
}

constexpr std::uint64_t multiplier(Normalized x, const Decade& decade) {
    return x.significand >> (62 - x.binade - decade.scaleBinade);
}

// The 17 digits of a number of the decade as an integer, a tie going to the even digit.
constexpr std::uint64_t roundedDigits(Normalized x, const Decade& decade) {
    const std::uint64_t factor = multiplier(x, decade);
    const uint128 low = uint128{factor} * decade.scaleLow;
    const uint128 product = uint128{factor} * decade.scaleHigh + (low >> 64);
    const auto fraction = static_cast<std::uint64_t>(product);
    const std::uint64_t digits = static_cast<std::uint64_t>(product >> 64) + (fraction >> 63);
    // One comparison and no branch: among 32-bit values of some sizes every fourth is a tie.
    const std::uint64_t offTie =
        (fraction ^ std::uint64_t{1} << 63) | static_cast<std::uint64_t>(low);
    return digits & ~std::uint64_t{offTie == 0};
}

} // namespace wide_real_tables
