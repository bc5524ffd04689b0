#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

// The wide real by way of std::to_chars: what the conversion in number_formats is held against, in
// its result by the tests and the proof, in its time by the benchmark. Finite values only.
namespace wide_real_reference {

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
    const auto ahead = static_cast<std::size_t>(fixed ? exponent : 0);
    char* out = field + 3;
    if (ahead == 0) out[-1] = '0';
    if (std::signbit(value)) out[ahead == 0 ? -2 : -1] = '-';
    std::memcpy(out, digits, ahead);
    out[ahead] = '.';
    std::memcpy(out + ahead + 1, digits + ahead, 17 - ahead);
    if (fixed) return;
    const int size = std::abs(exponent);
    field[21] = 'E';
    field[22] = exponent < 0 ? '-' : '+';
    for (int place = 25, rest = size; place > 22; --place, rest /= 10) {
        field[place] = static_cast<char>('0' + rest % 10);
    }
}

} // namespace wide_real_reference
