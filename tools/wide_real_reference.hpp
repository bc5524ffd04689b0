#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

// The wide real by std::to_chars, for finite values only. Tests and prove_wide_real compare the
// result of number_formats with it, the benchmark compares the time.
namespace wide_real_reference {

// Writes the 26 bytes of the field.
inline void write(double value, char* field) {
    char text[32]; // d.dddddddddddddddde+xxx
    const char* end =
        std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific, 16)
            .ptr;
    char digits[17];
    digits[0] = text[0];
    std::memcpy(digits + 1, text + 2, 16);
    int exponent = 0;
    std::from_chars(text + 20, end, exponent);
    exponent = value == 0 ? 1 : 1 + (text[19] == '-' ? -exponent : exponent);

    std::memset(field, ' ', 26);
    const bool fixed = exponent >= 0 && exponent <= 17;
    const auto integerDigits = static_cast<std::size_t>(fixed ? exponent : 0);
    char* out = field + 3;
    if (integerDigits == 0) out[-1] = '0';
    if (std::signbit(value)) out[integerDigits == 0 ? -2 : -1] = '-';
    std::memcpy(out, digits, integerDigits);
    out[integerDigits] = '.';
    std::memcpy(out + integerDigits + 1, digits + integerDigits, 17 - integerDigits);
    if (fixed) return;
    const int size = std::abs(exponent);
    field[21] = 'E';
    field[22] = exponent < 0 ? '-' : '+';
    for (int at = 25, rest = size; at > 22; --at, rest /= 10) {
        field[at] = static_cast<char>('0' + rest % 10);
    }
}

} // namespace wide_real_reference
