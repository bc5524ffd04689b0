#include "tvncommon/text/number_formats.hpp"

#include "tvncommon/text/digit_words.hpp"
#include "tvncommon/text/wide_real_tables.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace number_formats {
namespace {

using wide_real_tables::Decade;

// Columns of a wide real: 3 for blanks, sign and leading zero; 18 for digits and point; 5 for the
// exponent or blanks.
constexpr int digitColumn = 3;
constexpr int lastDigitColumn = 20;

// The first four columns by `pointAt` and sign. The fourth is overwritten by the first digit or the
// point.
using Lead = std::array<char, 4>;
constexpr std::array<std::array<Lead, 2>, 18> makeLeads() {
    std::array<std::array<Lead, 2>, 18> leads;
    leads.fill({Lead{' ', ' ', ' ', ' '}, Lead{' ', ' ', '-', ' '}});
    leads[0] = {Lead{' ', ' ', '0', ' '}, Lead{' ', '-', '0', ' '}};
    return leads;
}
constexpr std::array<std::array<Lead, 2>, 18> leads = makeLeads();

// Neighbouring values may differ in sign and size, so a branch on either would often be
// mispredicted. Instead the stores overlap, and the later ones correct the earlier ones: the digits
// leave a gap of one undefined byte, which the point fills.
inline void writeField(std::uint64_t digits, const Decade& decade, bool negative, char* field) {
    const std::uint64_t sixteen = digits / 10;
    const std::uint64_t eight = digits / 1000000000;
    const std::size_t pointAt = decade.pointAt;
    std::memcpy(field, leads[pointAt][negative].data(), 4);
    std::memcpy(field + lastDigitColumn + 1, decade.tail.data(), decade.tail.size());
    digit_words::storeWithGap(digit_words::sixteenDigits(eight, sixteen - eight * 100000000),
                              pointAt, field + digitColumn);
    field[lastDigitColumn - (pointAt == 17)] = static_cast<char>('0' + (digits - sixteen * 10));
    field[digitColumn + pointAt] = '.';
}

[[gnu::always_inline]] inline void putPositive(std::uint64_t bits, bool negative, char* field) {
    const auto x = wide_real_tables::normalize(bits);
    const Decade& decade = wide_real_tables::decadeOf(bits, x.binade);
    writeField(wide_real_tables::roundedDigits(x, decade), decade, negative, field);
}

constexpr std::uint64_t infinityBits = std::uint64_t{0x7ff} << 52;

// Zeros, subnormal numbers, infinities and NaN.
[[gnu::noinline]] void putUncommon(std::uint64_t bits, bool negative, char* field) {
    if (bits == 0) {
        std::memcpy(field, "   0.0000000000000000     ", wideRealWidth);
        if (negative) field[digitColumn - 1] = '-';
    } else if (bits < infinityBits) {
        putPositive(bits, negative, field);
    } else {
        const std::string_view text = bits > infinityBits ? "                       NaN"
                                      : negative          ? "                 -Infinity"
                                                          : "                  Infinity";
        std::memcpy(field, text.data(), wideRealWidth);
    }
}

[[gnu::always_inline]] inline void put(double value, char* field) {
    const auto pattern = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t bits = pattern << 1 >> 1;
    const bool negative = pattern >> 63 != 0;
    constexpr std::uint64_t leastNormal = std::uint64_t{1} << 52;
    if (bits - leastNormal < infinityBits - leastNormal) [[likely]] {
        putPositive(bits, negative, field);
    } else {
        putUncommon(bits, negative, field);
    }
}

template<typename Real>
char* putTail(const Real* values, int count, char* out) {
    for (int i = 0; i < count; ++i, out += wideRealWidth) {
        writeWideReal(static_cast<double>(values[i]), out);
    }
    *out = '\n';
    return out + 1;
}

std::string rightAligned(const std::string& text, int width) {
    const auto columns = static_cast<std::size_t>(width);
    if (text.size() > columns) return std::string(columns, '*');
    return std::string(columns - text.size(), ' ') + text;
}

std::string notFinite(double value, int width) {
    if (std::isnan(value)) return rightAligned("NaN", width);
    const std::string sign = std::signbit(value) ? "-" : "";
    const bool fits = static_cast<int>(sign.size()) + 8 <= width;
    return rightAligned(sign + (fits ? "Infinity" : "Inf"), width);
}

constexpr auto powersOfTen = [] {
    std::array<std::uint64_t, 18> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 10 * powers[i - 1];
    return powers;
}();

// Number of decimal digits. 1233 / 2^12 is less than log10(2) by 5e-6, so that for up to 64 bits
// `least` is floor(bits * log10(2)): the number of digits or one less.
int digitCount(std::uint64_t number) {
    const auto bits = static_cast<int>(std::bit_width(number | 1));
    const int least = (bits * 1233) >> 12;
    return least + (number >= powersOfTen[static_cast<std::size_t>(least)]);
}

// Returns size * 10^decimals rounded to the nearest integer, a tie to the even one. The product
// must be below 9e15 < 2^53, so `size` is too: its last bit is worth 1 at most and `shift` is not
// negative.
std::uint64_t scaledInteger(double size, int decimals) {
    const auto bits = std::bit_cast<std::uint64_t>(size);
    const auto biased = static_cast<int>(bits >> 52);
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
    const std::uint64_t significand = biased > 0 ? fraction | std::uint64_t{1} << 52 : fraction;
    const int shift = 1075 - (biased > 0 ? biased : 1);
    wide_real_tables::uint128 product = significand;
    product *= powersOfTen[static_cast<std::size_t>(decimals)];
    if (shift == 0) return static_cast<std::uint64_t>(product); // an integer of 2^52 or more
    // The product is below 2^53 * 10^9 < 2^83: it rounds to 0, and shifts of 128 are undefined.
    if (shift > 100) return 0;
    const auto whole = static_cast<std::uint64_t>(product >> shift);
    const wide_real_tables::uint128 half = wide_real_tables::uint128{1} << (shift - 1);
    const wide_real_tables::uint128 rest = product & (2 * half - 1);
    return whole + (rest > half || (rest == half && (whole & 1) != 0));
}

// All numbers of up to four digits as text, with leading zeros or leading blanks.
using FourDigits = std::array<std::array<char, 4>, 10000>;
constexpr FourDigits makeFourDigits(bool zeros) {
    FourDigits texts;
    for (int number = 0; number < 10000; ++number) {
        std::array<char, 4>& text = texts[static_cast<std::size_t>(number)];
        int rest = number;
        for (std::size_t i = 4; i-- > 0; rest /= 10)
            text[i] = rest > 0 || zeros || i == 3 ? static_cast<char>('0' + rest % 10) : ' ';
    }
    return texts;
}
constexpr FourDigits zeroPadded = makeFourDigits(true);
constexpr FourDigits blankPadded = makeFourDigits(false);

// Negative numbers and those of more than eight digits.
[[gnu::noinline]] void putUncommonInteger(std::int32_t value, char* field) {
    std::array<char, 16> text;
    const char* end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    const auto size = static_cast<std::size_t>(end - text.data());
    std::memset(field, size > integerWidth ? '*' : ' ', integerWidth);
    if (size <= integerWidth) std::memcpy(field + integerWidth - size, text.data(), size);
}

inline void putInteger(std::int32_t value, char* field) {
    const auto number = static_cast<std::uint32_t>(value);
    if (number >= 100000000) return putUncommonInteger(value, field);
    const std::uint32_t upper = number / 10000;
    const std::uint32_t lower = number - upper * 10000;
    std::memcpy(field, "      ", 6);
    if (upper > 0) std::memcpy(field + 2, blankPadded[upper].data(), 4);
    std::memcpy(field + 6, (upper > 0 ? zeroPadded : blankPadded)[lower].data(), 4);
}

} // namespace

void writeWideReal(double value, char* field) {
    put(value, field);
}

std::string wideRealText(double value) {
    std::array<char, wideRealWidth> field;
    writeWideReal(value, field.data());
    const std::string_view text(field.data(), field.size());
    const std::size_t begin = text.find_first_not_of(' ');
    return std::string(text.substr(begin, text.find_last_not_of(' ') + 1 - begin));
}

char* writeRealRows(const double* values, std::int64_t rows, char* out) {
    for (; rows > 0; --rows, out += realRowBytes) {
        for (int i = 0; i < valuesPerRow; ++i) put(*values++, out + i * wideRealWidth);
        out[realRowBytes - 1] = '\n';
    }
    return out;
}

// Widens the values in batches: a conversion just before the digits of the same value would add its
// latency.
char* writeRealRows(const float* values, std::int64_t rows, char* out) {
    constexpr std::int64_t batchRows = 16;
    std::array<double, batchRows * valuesPerRow> wide;
    while (rows > 0) {
        const std::int64_t now = std::min(rows, batchRows);
        std::copy(values, values + now * valuesPerRow, wide.begin());
        out = writeRealRows(wide.data(), now, out);
        values += now * valuesPerRow;
        rows -= now;
    }
    return out;
}

char* writeRealTail(const double* values, int count, char* out) {
    return putTail(values, count, out);
}

char* writeRealTail(const float* values, int count, char* out) {
    return putTail(values, count, out);
}

char* writeIntegerRows(const std::int32_t* values, std::int64_t rows, char* out) {
    for (; rows > 0; --rows, values += valuesPerRow) {
        out = writeIntegerTail(values, valuesPerRow, out);
    }
    return out;
}

char* writeIntegerTail(const std::int32_t* values, int count, char* out) {
    for (int i = 0; i < count; ++i, out += 1 + integerWidth) {
        *out = ' ';
        putInteger(values[i], out + 1);
    }
    *out = '\n';
    return out + 1;
}

char* writeConnectivityRows(const std::int32_t* values, std::int64_t rows, int perRow, char* out) {
    for (; rows > 0; --rows) {
        for (int i = 0; i < perRow; ++i, out += integerWidth + 1) {
            putInteger(*values++, out);
            out[integerWidth] = ' ';
        }
        *out++ = '\n';
    }
    return out;
}

std::string exponentField(double value, int width, int digits) {
    if (!std::isfinite(value)) return notFinite(value, width);
    std::string text = std::signbit(value) ? "-" : "";
    if (static_cast<int>(text.size()) + digits + 6 <= width) text += '0';
    text += '.';

    // d.ddde+xx, without a point if there is one digit.
    std::string scientific(static_cast<std::size_t>(digits) + 16, ' ');
    const char* end = std::to_chars(scientific.data(), scientific.data() + scientific.size(),
                                    std::fabs(value), std::chars_format::scientific, digits - 1)
                          .ptr;
    const std::size_t mark = scientific.find('e');
    for (const char c : std::string_view(scientific).substr(0, mark)) {
        if (c != '.') text += c;
    }
    int exponent = 0;
    std::from_chars(scientific.data() + mark + 2, end, exponent);
    if (scientific[mark + 1] == '-') exponent = -exponent;
    if (value != 0) ++exponent;
    const int size = std::abs(exponent);
    if (size < 100) text += 'E';
    text += exponent < 0 ? '-' : '+';
    if (size < 10) text += '0';
    return rightAligned(text + std::to_string(size), width);
}

char* writeFixedField(double value, int width, int decimals, char* field) {
    constexpr int blanks = 48;        // before the digits, so that a whole field is copied
    constexpr int maximumDigits = 16; // of `sixteenDigits`
    std::array<char, 400> buffer;     // blanks, at most 309 digits, the point and 9 decimals
    std::memset(buffer.data(), ' ', blanks);
    char* begin = buffer.data() + blanks;
    char* end = begin + maximumDigits + 1;
    const double size = std::fabs(value);
    if (size * static_cast<double>(powersOfTen[static_cast<std::size_t>(decimals)]) < 9e15) {
        const std::uint64_t scaled = scaledInteger(size, decimals);
        const std::uint64_t eight = scaled / 100000000;
        char* const point = begin + maximumDigits - decimals;
        digit_words::storeWithGap(digit_words::sixteenDigits(eight, scaled - eight * 100000000),
                                  static_cast<std::size_t>(maximumDigits - decimals), begin);
        *point = '.';
        begin = point - std::max(digitCount(scaled) - decimals, 1);
        std::memset(begin - maximumDigits, ' ', maximumDigits);
    } else if (std::isfinite(value)) {
        end = std::to_chars(begin, buffer.data() + buffer.size(), size, std::chars_format::fixed,
                            decimals)
                  .ptr;
        if (decimals == 0) *end++ = '.';
    } else {
        const std::string text = notFinite(value, width);
        return std::copy(text.begin(), text.end(), field);
    }
    const bool negative = std::signbit(value);
    if (*begin == '0' && decimals > 0 && end - begin + negative == width + 1) *begin++ = ' ';
    if (negative) *--begin = '-';
    if (end - begin > width) return std::fill_n(field, width, '*');
    std::memcpy(field, end - width, static_cast<std::size_t>(width));
    return field + width;
}

std::string generalField(double value, int width, int digits) {
    if (!std::isfinite(value)) return notFinite(value, width);
    std::array<char, 32> scientific; // d.ddde+xx, without a point if there is one digit
    char* const end = std::to_chars(scientific.data(), scientific.data() + scientific.size(),
                                    std::fabs(value), std::chars_format::scientific, digits - 1)
                          .ptr;
    const char* const mark = std::find(scientific.data(), end, 'e');
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
    const int before = exponent + 1; // digits before the point
    if (before < 0 || before > digits) return exponentField(value, width, digits);

    std::string text(scientific.data(), 1);
    text.append(std::min<const char*>(scientific.data() + 2, mark), mark);
    if (before == 0) text.insert(0, "0");
    text.insert(static_cast<std::size_t>(std::max(before, 1)), ".");
    if (std::signbit(value)) text.insert(0, "-");
    constexpr int blanks = 4;
    return rightAligned(text, width - blanks) + std::string(blanks, ' ');
}

std::string integerField(std::int64_t value, int width) {
    return rightAligned(std::to_string(value), width);
}

} // namespace number_formats
