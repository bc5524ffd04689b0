#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
// The CMake option MESHRAKE_PORTABLE selects the form for other machines on every machine.
#if defined(__SSE2__) && !defined(MESHRAKE_PORTABLE)
#define MESHRAKE_SSE2_DIGITS
#include <emmintrin.h>
#endif

// Decimal digits eight and sixteen at a time, by arithmetic on lanes of one word: the number is
// split into lanes of four digits, then two, then one. With 16-byte registers both words are split
// at once, which halves the time of a whole wide real.
//
// Each quotient x / d is (x * m) >> s with m = ceil(2^s / d). With e = m * d - 2^s the result is
// exact while x * e < 2^s: the excess x * e / (d * 2^s) is then less than 1 / d, which is the
// distance from x / d to the next integer.
//
//   d       s    m            e     exact below   used below
//   10000   40   109951163    2224  4.9e8         10^8
//   10000   45   0xd1b71759   1168  3.0e10        10^8
//   100     19   5243         12    43690         10^4
//   10      10   103          6     170           100
//   10      16   6554         4     16384         100
//
// Each step leaves q = x / d and r = x % d in two lanes without a separate remainder: in lanes of
// w bits, q + (x - q * d) * 2^w = x * 2^w - q * (d * 2^w - 1).
namespace digit_words {

static_assert(std::endian::native == std::endian::little, "the lowest byte is the first character");

// The digits of a number below 10^8 as values 0 to 9, leading zeros included. The first digit is
// the lowest byte. Products stay within their lanes: 9999 * 5243 < 2^32 and 99 * 103 < 2^16. The
// masks remove the low bits of the lane above, which the shift moves into a lane.
constexpr std::uint64_t eightDigits(std::uint64_t number) {
    const std::uint64_t fours = (number * 109951163) >> 40;
    const std::uint64_t pairs = (number << 32) - fours * ((std::uint64_t{10000} << 32) - 1);
    const std::uint64_t hundreds = ((pairs * 5243) >> 19) & 0x0000007f0000007f;
    const std::uint64_t ones = (pairs << 16) - hundreds * ((std::uint64_t{100} << 16) - 1);
    const std::uint64_t tens = ((ones * 103) >> 10) & 0x000f000f000f000f;
    return (ones << 8) - tens * ((std::uint64_t{10} << 8) - 1);
}

// Sixteen bytes from &gapMask[17 - n] have ones in their first n bytes.
inline constexpr std::array<unsigned char, 33> gapMask = {
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};

#if defined(MESHRAKE_SSE2_DIGITS)

using SixteenDigits = __m128i;

// The characters of two numbers below 10^8, those of `upper` first. A high product of 16 bits is
// a shift by 16: 3 more make 19. _mm_madd_epi16 takes 0x10000 - 100 as the pair (-100, 0).
inline SixteenDigits sixteenDigits(std::uint64_t upper, std::uint64_t lower) {
    const __m128i eights =
        _mm_set_epi64x(static_cast<std::int64_t>(lower), static_cast<std::int64_t>(upper));
    const __m128i thousands =
        _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi64x(0xd1b71759)), 45);
    // The product leaves the upper four digits in the upper half of a lane; they go first.
    const __m128i fours = _mm_shuffle_epi32(
        _mm_add_epi64(eights, _mm_mul_epu32(thousands, _mm_set1_epi64x((1LL << 32) - 10000))),
        _MM_SHUFFLE(2, 3, 0, 1));
    const __m128i hundreds = _mm_srli_epi32(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
    const __m128i rest =
        _mm_add_epi32(fours, _mm_madd_epi16(hundreds, _mm_set1_epi32(0x10000 - 100)));
    const __m128i pairs = _mm_or_si128(hundreds, _mm_slli_epi32(rest, 16));
    const __m128i tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
    const __m128i ones = _mm_sub_epi16(_mm_slli_epi16(pairs, 8),
                                       _mm_mullo_epi16(tens, _mm_set1_epi16(10 * 256 - 1)));
    return _mm_or_si128(ones, _mm_set1_epi8('0'));
}

// Writes 17 bytes: the digits, with one undefined byte after the first `gapAt` (0 to 17) of them.
inline void storeWithGap(SixteenDigits digits, std::size_t gapAt, char* out) {
    const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&gapMask[17 - gapAt]));
    const __m128i moved = _mm_slli_si128(digits, 1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 1), digits);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_or_si128(_mm_and_si128(before, digits), _mm_andnot_si128(before, moved)));
}

#else

using SixteenDigits = std::array<std::uint64_t, 2>;

inline SixteenDigits sixteenDigits(std::uint64_t upper, std::uint64_t lower) {
    constexpr std::uint64_t zeros = 0x3030303030303030;
    return {eightDigits(upper) | zeros, eightDigits(lower) | zeros};
}

inline void storeWithGap(const SixteenDigits& digits, std::size_t gapAt, char* out) {
    SixteenDigits before;
    std::memcpy(before.data(), &gapMask[17 - gapAt], 16);
    const SixteenDigits moved = {digits[0] << 8, digits[1] << 8 | digits[0] >> 56};
    out[16] = static_cast<char>(digits[1] >> 56);
    for (std::size_t i = 0; i < 2; ++i) {
        const std::uint64_t word = (digits[i] & before[i]) | (moved[i] & ~before[i]);
        std::memcpy(out + 8 * i, &word, 8);
    }
}

#endif

} // namespace digit_words
