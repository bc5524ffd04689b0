#include "tvncommon/number_formats.hpp"

#include "tvncommon/digit_words.hpp"
#include "tvncommon/wide_real_tables.hpp"

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

// The columns of a wide real: 3 of blanks, sign and leading zero, 18 of digits and point, 5 of
// exponent or blanks.
constexpr int digitColumn = 3;
constexpr int lastDigitColumn = 20;

// The first four columns by `pointAt` and sign; the fourth is the first digit's or the point's.
using Lead = std::array<char, 4>;
constexpr std::array<std::array<Lead, 2>, 18> makeLeads() {
    std::array<std::array<Lead, 2>, 18> leads;
    leads.fill({Lead{' ', ' ', ' ', ' '}, Lead{' ', ' ', '-', ' '}});
    leads[0] = {Lead{' ', ' ', '0', ' '}, Lead{' ', '-', '0', ' '}};
    return leads;
}
constexpr std::array<std::array<Lead, 2>, 18> leads = makeLeads();

// Neighbouring values may differ in sign and size, so nothing branches on either: the order of the
// overlapping stores does it.
inline void layOut(std::uint64_t digits, const Decade& decade, bool negative, char* field) {
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
    layOut(wide_real_tables::roundedDigits(x, decade), decade, negative, field);
}

constexpr std::uint64_t infinityBits = std::uint64_t{0x7ff} << 52;

// Zeros, subnormal numbers and what is not a number.
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

inline void putInteger(std::int32_t value, char* field) {
    const bool negative = value < 0;
    const auto pattern = static_cast<std::uint32_t>(value);
    const std::uint32_t size = negative ? 0 - pattern : pattern;
    if (size >= 100000000) {
        std::memcpy(field, integerField(value, integerWidth).data(), integerWidth);
        return;
    }
    const std::uint64_t digits = digit_words::eightDigits(size);
    // The last digit is written even when it is zero.
    const int blanks = std::countr_zero(digits | std::uint64_t{1} << 56) / 8;
    const std::uint64_t leading = (std::uint64_t{1} << (8 * blanks)) - 1;
    const std::uint64_t text = (digits | 0x3030303030303030) - (0x1010101010101010 & leading);
    std::memcpy(field, "  ", 2);
    std::memcpy(field + 2, &text, 8);
    field[1 + blanks] = negative ? '-' : ' ';
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

// Widened in batches: one by one, each conversion would add its delay to that of the digits.
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
    if (std::isnan(value)) return rightAligned("NaN", width);
    std::string text = std::signbit(value) ? "-" : "";
    if (std::isinf(value)) {
        const bool room = static_cast<int>(text.size()) + 8 <= width;
        return rightAligned(text + (room ? "Infinity" : "Inf"), width);
    }
    if (static_cast<int>(text.size()) + digits + 6 <= width) text += '0';
    text += '.';

    // d.ddde+xx, with no point when there is one digit.
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

std::string integerField(std::int64_t value, int width) {
    return rightAligned(std::to_string(value), width);
}

} // namespace number_formats
