// Proves that number_formats::writeWideReal rounds every double correctly.
//
//     prove_wide_real [number of random patterns, default 100000000] [--floats]
//
// The first steps are a proof for all doubles. The table of decades is correct. No double is so
// close to half a unit of its 17th digit that 128 bits of a power of ten could round it wrongly.
// All numbers of eight digits are written correctly.
//
// The other steps compare whole fields with std::to_chars: powers of two and ten with their
// neighbours, ties, random bit patterns, usual sizes and, with --floats, all 32-bit patterns. The
// program prints its steps and ends with status 1 on the first error. The tests run it with few
// patterns, with the variant of digit_words.hpp that MESHRAKE_PORTABLE selects.

#include "tools/wide_real_reference.hpp"
#include "tvncommon/text/digit_words.hpp"
#include "tvncommon/text/number_formats.hpp"
#include "tvncommon/text/wide_real_tables.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

using wide_real_tables::Decade;
using wide_real_tables::decades;
using wide_real_tables::uint128;

constexpr std::uint64_t infinityBits = std::uint64_t{0x7ff} << 52;
constexpr std::uint64_t signBit = std::uint64_t{1} << 63;

[[noreturn]] void fail(const char* what, std::int64_t where) {
    std::printf("FAULT: %s at %lld\n", what, static_cast<long long>(where));
    std::exit(1);
}

// Natural numbers of any length, as 32-bit limbs, lowest first. The check of the table only needs
// multiplication, which makes it independent of the division that computes the table.
using Natural = std::vector<std::uint32_t>;

Natural times(const Natural& a, const Natural& b) {
    Natural product(a.size() + b.size(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            carry += std::uint64_t{a[i]} * b[j] + product[i + j];
            product[i + j] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        product[i + b.size()] = static_cast<std::uint32_t>(carry);
    }
    return product;
}

Natural powerOfTwo(int n) {
    Natural power(static_cast<std::size_t>(n / 32) + 1, 0);
    power.back() = std::uint32_t{1} << (n % 32);
    return power;
}

Natural powerOfTen(int n) {
    Natural power{1};
    for (; n > 0; --n) power = times(power, {10});
    return power;
}

Natural fromWide(uint128 value) {
    Natural number;
    for (; value != 0; value >>= 32) number.push_back(static_cast<std::uint32_t>(value));
    return number;
}

int compare(Natural a, Natural b) {
    const std::size_t size = std::max(a.size(), b.size());
    a.resize(size, 0);
    b.resize(size, 0);
    for (std::size_t i = size; i-- > 0;) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}

uint128 significandOf(const Decade& decade) {
    return uint128{decade.scaleHigh} << 64 | decade.scaleLow;
}

int powerOf(std::size_t decade) {
    return 16 - wide_real_tables::leastDecade - static_cast<int>(decade);
}

bool isExact(int power) {
    return power >= 0 && power <= 55;
}

// Checks significand - 1 < 10^power * 2^(127 - binade) <= significand, with equality for the exact
// powers. Factors with negative exponents are moved to the other side, so all numbers are integers.
void checkTable() {
    for (std::size_t i = 0; i < decades.size(); ++i) {
        const int power = powerOf(i);
        const int scale = 127 - decades[i].scaleBinade;
        const uint128 significand = significandOf(decades[i]);
        const Natural exact = times(powerOfTen(std::max(power, 0)), powerOfTwo(std::max(scale, 0)));
        const Natural unit =
            times(powerOfTen(std::max(-power, 0)), powerOfTwo(std::max(-scale, 0)));
        if (significand >> 127 != 1) fail("significand without its top bit, power of ten", power);
        const int above = compare(times(fromWide(significand), unit), exact);
        const int below = compare(times(fromWide(significand - 1), unit), exact);
        if (above < 0 || below >= 0 || (above == 0) != isExact(power)) {
            fail("wrong significand, power of ten", power);
        }
    }
    std::printf("table: %zu powers of ten are correctly rounded up, 10^0 to 10^55 exact\n",
                decades.size());
}

// The first multiple n of a step with n * step mod modulus in a range.
struct Hit {
    bool found = false;
    std::uint64_t multiple = 0; // n
    std::uint64_t wraps = 0;    // n * step / modulus, rounded down
    uint128 residue = 0;        // n * step mod modulus
};

constexpr std::uint64_t hitLimit = std::uint64_t{1} << 53;

// Returns the smallest n below hitLimit with least <= n * step mod modulus <= greatest, by Euclid's
// algorithm. If the range itself contains no multiple of `step`, n * step = wraps * modulus +
// residue implies that wraps * (modulus mod step), modulo step, is in the mirrored range. That is
// the same problem with smaller numbers.
Hit firstHit(uint128 step, uint128 modulus, uint128 least, uint128 greatest) {
    if (least == 0) return {true, 0, 0, 0};
    if (step == 0) return {};
    const uint128 direct = (least - 1) / step + 1;
    if (direct * step <= greatest) {
        if (direct >= hitLimit) return {};
        return {true, static_cast<std::uint64_t>(direct), 0, direct * step};
    }
    const uint128 mirroredLeast = step - 1 - (greatest + step - 1) % step;
    const uint128 mirroredGreatest = step - 1 - (least + step - 1) % step;
    const Hit inner = firstHit(modulus % step, step, mirroredLeast, mirroredGreatest);
    const uint128 whole = modulus / step;
    // n is at least `wraps` times `whole`.
    if (!inner.found || inner.multiple >= hitLimit || whole >= hitLimit) return {};
    const uint128 last = (least + inner.residue - 1) / step + 1;
    const uint128 multiple = whole * inner.multiple + inner.wraps + last;
    if (multiple >= hitLimit) return {};
    return {true, static_cast<std::uint64_t>(multiple), inner.multiple,
            last * step - inner.residue};
}

// Compares firstHit with an exhaustive search, for all small arguments.
void checkFirstHit() {
    std::int64_t cases = 0;
    for (unsigned modulus = 1; modulus <= 40; ++modulus) {
        for (unsigned step = 0; step < modulus; ++step) {
            for (unsigned least = 0; least < modulus; ++least) {
                for (unsigned greatest = least; greatest < modulus; ++greatest, ++cases) {
                    unsigned n = 0;
                    while (n < modulus &&
                           (n * step % modulus < least || n * step % modulus > greatest)) {
                        ++n;
                    }
                    const Hit hit = firstHit(step, modulus, least, greatest);
                    if (hit.found != (n < modulus) || (hit.found && hit.multiple != n)) {
                        fail("search for the first multiple in a range, modulus", modulus);
                    }
                }
            }
        }
    }
    std::printf("search: agrees with an exhaustive search in %lld small cases\n",
                static_cast<long long>(cases));
}

std::uint64_t multiplierOf(std::uint64_t bits, const Decade& decade) {
    return wide_real_tables::multiplier(wide_real_tables::normalize(bits), decade);
}

// True if the fraction of a double from `first` to `last` is at most 2^-70 above one half. These
// doubles have the same decade and exponent field, so their multipliers have a constant step. All
// multipliers are even, so the modulus 2^128 can be halved.
bool isCloseAboveHalf(std::uint64_t first, std::uint64_t last, const Decade& decade) {
    constexpr uint128 modulus = uint128{1} << 127;
    constexpr uint128 half = modulus >> 1;
    constexpr uint128 gap = uint128{1} << 57;
    const uint128 significand = significandOf(decade);
    const std::uint64_t start = multiplierOf(first, decade);
    const std::uint64_t step = first == last ? 0 : multiplierOf(first + 1, decade) - start;
    if (start % 2 != 0 || step % 2 != 0 || start >> 58 != 0 ||
        multiplierOf(last, decade) != start + step * (last - first)) {
        fail("multipliers without a constant step, first bits", static_cast<std::int64_t>(first));
    }
    const uint128 startFraction = (start / 2 * significand) % modulus;
    if (startFraction >= half && startFraction - half < gap) return true;
    const uint128 least = (half - startFraction) % modulus;
    const Hit hit = firstHit((step / 2 * significand) % modulus, modulus, least, least + gap - 1);
    return hit.found && hit.multiple <= last - first;
}

void proveRounding() {
    constexpr std::uint64_t tenToThe16 = 10'000'000'000'000'000;
    std::int64_t intervals = 0; // of doubles with one decade and one exponent field
    std::int64_t inexact = 0;
    std::uint64_t first = 1;
    for (std::size_t i = 0; i < decades.size(); ++i) {
        const Decade& decade = decades[i];
        while (first < decade.next) {
            const std::uint64_t last = std::min(decade.next, ((first >> 52) + 1) << 52) - 1;
            for (const std::uint64_t bits : {first, last}) {
                const auto x = wide_real_tables::normalize(bits);
                const std::uint64_t digits = wide_real_tables::roundedDigits(x, decade);
                if (&wide_real_tables::decadeOf(bits, x.binade) != &decade || digits < tenToThe16 ||
                    digits >= 10 * tenToThe16) {
                    fail("wrong decade, bits", static_cast<std::int64_t>(bits));
                }
            }
            if (!isExact(powerOf(i))) {
                if (isCloseAboveHalf(first, last, decade))
                    fail("undecided rounding, power", powerOf(i));
                ++inexact;
            }
            ++intervals;
            first = last + 1;
        }
    }
    if (first != infinityBits) fail("decades end before the doubles", 0);
    std::printf(
        "rounding: decided for all doubles (%lld intervals of one decade and one exponent, %lld "
        "of them with an inexact power)\n",
        static_cast<long long>(intervals), static_cast<long long>(inexact));
}

// Compares all numbers of eight digits, in both halves of a word pair, with texts of four digits.
void checkDigits() {
    constexpr std::uint32_t texts = 10000;
    std::vector<std::array<char, 4>> four(texts);
    for (std::uint32_t i = 0; i < texts; ++i) {
        for (std::uint32_t rest = i, at = 4; at-- > 0; rest /= 10) {
            four[i][at] = static_cast<char>('0' + rest % 10);
        }
    }
    for (std::uint32_t upper = 0; upper < texts; ++upper) {
        for (std::uint32_t lower = 0; lower < texts; ++lower) {
            const std::uint64_t number = std::uint64_t{upper} * texts + lower;
            char text[17];
            digit_words::storeWithGap(digit_words::sixteenDigits(number, 99999999 - number), 16,
                                      text);
            const std::uint64_t eight = digit_words::eightDigits(number) | 0x3030303030303030;
            if (std::memcmp(text, four[upper].data(), 4) != 0 ||
                std::memcmp(text + 4, four[lower].data(), 4) != 0 ||
                std::memcmp(text + 8, four[texts - 1 - upper].data(), 4) != 0 ||
                std::memcmp(text + 12, four[texts - 1 - lower].data(), 4) != 0 ||
                std::memcmp(text, &eight, 8) != 0) {
                fail("wrong digits, number", static_cast<std::int64_t>(number));
            }
        }
    }
    std::printf("digits: correct for all numbers of eight digits\n");
}

void compareField(double value) {
    if (!std::isfinite(value)) return;
    char ours[26];
    char theirs[26];
    number_formats::writeWideReal(value, ours);
    wide_real_reference::write(value, theirs);
    if (std::memcmp(ours, theirs, 26) == 0) return;
    std::printf("DIFFERENCE at bits %016llx:\n  [%.26s]\n  [%.26s]\n",
                static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)), ours, theirs);
    std::exit(1);
}

void compareBits(std::uint64_t bits) {
    compareField(std::bit_cast<double>(bits));
}

void compareAround(double value, int neighbours) {
    const auto bits = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(value));
    for (std::int64_t near = bits - neighbours; near <= bits + neighbours; ++near) {
        if (near < 0) continue;
        compareBits(static_cast<std::uint64_t>(near));
        compareBits(static_cast<std::uint64_t>(near) | signBit);
    }
}

void comparePowers() {
    constexpr int neighbours = 200;
    for (int n = -1074; n <= 1023; ++n) compareAround(std::ldexp(1.0, n), neighbours);
    for (int n = -324; n <= 308; ++n) {
        for (int factor = 1; factor <= 9; ++factor) {
            char text[16];
            std::snprintf(text, sizeof text, "%de%d", factor, n);
            compareAround(std::strtod(text, nullptr), neighbours);
        }
    }
    compareAround(0.0, 100000);
    std::printf(
        "powers: 2^-1074 to 2^1023, 1 to 9 times 10^-324 to 10^308, each with %d neighbours "
        "on both sides and both signs\n",
        neighbours);
}

// odd / 2^n has n decimals, the last of which is 5. With 18 digits it is halfway between two
// numbers of 17 digits.
void compareTies(std::int64_t perSize, std::mt19937_64& random) {
    for (int n = 2; n <= 24; ++n) {
        const double least = std::ceil(std::ldexp(std::pow(10.0, 17 - n), n));
        const double greatest = std::min(10 * least, std::ldexp(1.0, 53)) - 1;
        std::uniform_int_distribution<std::int64_t> odd(static_cast<std::int64_t>(least),
                                                        static_cast<std::int64_t>(greatest));
        for (std::int64_t i = 0; i < perSize; ++i) {
            compareField(std::ldexp(static_cast<double>(odd(random) | 1), -n));
        }
    }
    std::printf("ties: %lld of each of 23 sizes\n", static_cast<long long>(perSize));
}

void compareRandom(std::int64_t count, std::mt19937_64& random) {
    for (std::int64_t i = 0; i < count; ++i) compareBits(random());
    std::printf("random: %lld bit patterns\n", static_cast<long long>(count));
}

// Values in fixed notation and in the adjacent decades: positive doubles and negative floats.
void compareUsualSizes(std::int64_t count, std::mt19937_64& random) {
    std::uniform_real_distribution<double> exponent(-2, 18);
    for (std::int64_t i = 0; i < count; ++i) {
        const double usual = std::pow(10.0, exponent(random));
        compareField(usual);
        compareField(-static_cast<float>(usual));
    }
    std::printf("usual sizes: %lld from 0.01 to 10^18\n", static_cast<long long>(count));
}

void compareFloats() {
    std::uint32_t pattern = 0;
    do {
        compareField(static_cast<double>(std::bit_cast<float>(pattern)));
    } while (++pattern != 0);
    std::printf("floats: all 2^32 patterns of 32 bits\n");
}

} // namespace

int main(int argumentCount, char** arguments) {
    std::int64_t patterns = 100'000'000;
    bool floats = false;
    for (int i = 1; i < argumentCount; ++i) {
        const bool isSwitch = std::strcmp(arguments[i], "--floats") == 0;
        if (isSwitch) floats = true;
        if (!isSwitch) patterns = std::atoll(arguments[i]);
    }
    if (patterns <= 0) {
        std::printf("usage: prove_wide_real [number of random patterns] [--floats]\n");
        return 1;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    const auto begin = std::chrono::steady_clock::now();
    std::mt19937_64 random(20180618);
    checkTable();
    checkFirstHit();
    proveRounding();
    checkDigits();
    comparePowers();
    compareTies(std::max<std::int64_t>(patterns / 1000, 1000), random);
    compareRandom(patterns, random);
    compareUsualSizes(patterns, random);
    if (floats) compareFloats();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::printf("no fault found, %.0f s\n", took.count());
}
