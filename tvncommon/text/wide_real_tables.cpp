#include "tvncommon/text/wide_real_tables.hpp"

#include <algorithm>
#include <cstddef>

namespace wide_real_tables {
namespace {

// Limbs from the lowest on. 10^340 < 2^1130 fits in 1280 bits, and 2^1279 / 10^323 > 2^206 has more
// than the 128 bits of a significand.
using BigInteger = std::array<std::uint64_t, 20>;
constexpr int bigBits = 64 * static_cast<int>(BigInteger{}.size());

constexpr void multiplyByTen(BigInteger& number) {
    uint128 carry = 0;
    for (std::uint64_t& limb : number) {
        carry += uint128{limb} * 10;
        limb = static_cast<std::uint64_t>(carry);
        carry >>= 64;
    }
}

// n divisions by ten that drop their remainders give the same as one division by 10^n that drops
// its remainder.
constexpr void divideByTen(BigInteger& number) {
    uint128 rest = 0;
    for (std::size_t i = number.size(); i-- > 0;) {
        rest = rest << 64 | number[i];
        number[i] = static_cast<std::uint64_t>(rest / 10);
        rest %= 10;
    }
}

struct Power {
    uint128 significand = 0;
    int binade = 0;
};

// Returns number * 2^-scale with its significand rounded up. `truncated`: the number has lost a
// remainder, so that it is not exact even if all lower bits are 0.
constexpr Power roundUp(const BigInteger& number, int scale, bool truncated) {
    std::size_t top = number.size() - 1;
    while (number[top] == 0) --top;
    const auto limb = [&](std::size_t below) { return below <= top ? number[top - below] : 0; };
    const int shift = std::countl_zero(number[top]);
    uint128 significand = uint128{limb(0)} << 64 | limb(1);
    std::uint64_t lost = limb(2);
    if (shift != 0) {
        significand = significand << shift | lost >> (64 - shift);
        lost <<= shift;
    }
    for (std::size_t below = 3; below <= top; ++below) lost |= limb(below);
    return {significand + (truncated || lost != 0),
            64 * static_cast<int>(top) + 63 - shift - scale};
}

// Powers of ten for the scales, 10^-292 to 10^340, and for the borders between decades.
constexpr int leastPower = leastDecade + 1;
constexpr int greatestPower = 16 - leastDecade;
using Powers = std::array<Power, greatestPower - leastPower + 1>;

constexpr Powers makePowers() {
    Powers powers;
    BigInteger number{1};
    for (int n = 0; n <= greatestPower; ++n, multiplyByTen(number)) {
        powers[static_cast<std::size_t>(n - leastPower)] = roundUp(number, 0, false);
    }
    number = {};
    number.back() = std::uint64_t{1} << 63;
    for (int n = -1; n >= leastPower; --n) {
        divideByTen(number);
        powers[static_cast<std::size_t>(n - leastPower)] = roundUp(number, bigBits - 1, true);
    }
    return powers;
}

// Bits of the smallest double not below the power.
constexpr std::uint64_t doubleAtLeast(const Power& power) {
    const int kept = power.binade < -1022 ? 1075 + power.binade : 53;
    const uint128 unit = uint128{1} << (128 - kept);
    const auto mantissa = static_cast<std::uint64_t>((power.significand - 1) / unit) + 1;
    // A mantissa of one bit more carries into the exponent, which gives the next power of two.
    const int biased = std::max(power.binade + 1022, 0);
    return (static_cast<std::uint64_t>(biased) << 52) + mantissa;
}

constexpr std::uint64_t tenToThe17 = 100'000'000'000'000'000;

constexpr std::uint64_t infinityBits = std::uint64_t{0x7ff} << 52;

constexpr Decades makeDecades() {
    const Powers powers = makePowers();
    const auto power = [&](int n) { return powers[static_cast<std::size_t>(n - leastPower)]; };
    Decades all;
    for (int exponent = leastDecade; exponent <= greatestDecade; ++exponent) {
        Decade& decade = all[static_cast<std::size_t>(exponent - leastDecade)];
        const Power scale = power(16 - exponent);
        decade.scaleHigh = static_cast<std::uint64_t>(scale.significand >> 64);
        decade.scaleLow = static_cast<std::uint64_t>(scale.significand);
        decade.scaleBinade = static_cast<std::int16_t>(scale.binade);
        decade.next = infinityBits;
        if (exponent < greatestDecade) {
            decade.next = doubleAtLeast(power(exponent + 1));
            // Half a unit of the 17th digit is less than the spacing of doubles, so at most one
            // double below the border is rounded up to it.
            if (roundedDigits(normalize(decade.next - 1), decade) >= tenToThe17) --decade.next;
        }
        const int shown = exponent + 1;
        const int size = shown < 0 ? -shown : shown;
        if (shown >= 0 && shown <= 17) {
            decade.pointAt = static_cast<std::uint8_t>(shown);
            decade.tail = {' ', ' ', ' ', ' ', ' '};
        } else {
            decade.tail = {'E', shown < 0 ? '-' : '+', static_cast<char>('0' + size / 100),
                           static_cast<char>('0' + size / 10 % 10),
                           static_cast<char>('0' + size % 10)};
        }
    }
    return all;
}

} // namespace

constinit const Decades decades = makeDecades();

} // namespace wide_real_tables
