#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

// Table and rounding of the conversion of number_formats.cpp to 17 digits.
//
// The digits of x are round(x * 10^power), where `power` is 16 less the decimal exponent of x. A
// table has the powers as 128-bit significands, so two multiplications give the digits as an
// integer and 128 bits of fraction. This is the fixed-precision scheme of Ryu (Adams, PLDI 2018;
// "Ryu revisited", OOPSLA 2019) and Schubfach (Giulietti, 2020), for a fixed number of digits.
//
// Every result is correctly rounded, for this reason. x is multiplier * 2^-(scaleBinade + 1) with a
// multiplier below 2^58, and the product is multiplier * significand / 2^128.
// - Powers 0 to 55 are exact in 128 bits, since 5^55 < 2^128. So is the product, and a tie is
//   detected.
// - Other significands are rounded up by less than 1, so the product is too large by less than
//   2^58 / 2^128 = 2^-70. It would be rounded wrongly only if its fraction were less than 2^-70
//   above one half. tools/prove_wide_real.cpp shows for every pair of binade and decade, with
//   multiplier * significand modulo 2^128, that no double has such a fraction. None of them is a
//   tie.
namespace wide_real_tables {

__extension__ using uint128 = unsigned __int128;

// The doubles whose first digit, after rounding to 17 digits, belongs to one power of ten.
struct alignas(32) Decade {
    std::uint64_t scaleHigh = 0; // 10^power as a 128-bit significand with its top bit set
    std::uint64_t scaleLow = 0;
    std::uint64_t next = 0;       // bits of the smallest double of the decade above
    std::int16_t scaleBinade = 0; // floor(log2(10^power))
    std::uint8_t pointAt = 0;     // number of digits before the decimal point
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
    // The decade of 2^binade; x may be in the next one. 78913 / 2^18 is less than log10(2) by 8e-7,
    // and the floor of the product is that of binade * log10(2) from -1074 to 1023.
    constexpr int offset = -leastDecade * (1 << 18);
    const auto lower = static_cast<std::size_t>((binade * 78913 + offset) >> 18);
    return decades[lower + (bits >= decades[lower].next)];
}

constexpr std::uint64_t multiplier(Normalized x, const Decade& decade) {
    return x.significand >> (62 - x.binade - decade.scaleBinade);
}

// Returns the 17 digits of a number of the decade as an integer. A tie is rounded to the even
// digit.
constexpr std::uint64_t roundedDigits(Normalized x, const Decade& decade) {
    const std::uint64_t factor = multiplier(x, decade);
    const uint128 low = uint128{factor} * decade.scaleLow;
    const uint128 product = uint128{factor} * decade.scaleHigh + (low >> 64);
    const auto fraction = static_cast<std::uint64_t>(product);
    const std::uint64_t digits = static_cast<std::uint64_t>(product >> 64) + (fraction >> 63);
    // Without a branch, which would often be mispredicted: in some decades every fourth of the
    // 32-bit values is a tie. `offTie` is 0 for a fraction of exactly one half. The digits are then
    // made even.
    const std::uint64_t offTie =
        (fraction ^ std::uint64_t{1} << 63) | static_cast<std::uint64_t>(low);
    return digits & ~std::uint64_t{offTie == 0};
}

} // namespace wide_real_tables
