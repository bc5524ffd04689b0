#include "companion/screen/screen.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace screen {

namespace {

void check(int status) {
    if (status != io_layer::ok)
        throw std::runtime_error("standard output: " + error::ioStatErrorMsg(status));
}

bool isControl(unsigned char c) {
    return c < ' ' || c == 0x7f;
}

// Number of bytes of a character in UTF-8 that is not shown, otherwise 0: a byte order mark, which
// some editors write, and U+0080 to U+009F, control characters of some terminals.
std::size_t longControl(std::string_view text) {
    if (text.starts_with("\xef\xbb\xbf")) return 3;
    if (text.size() < 2 || text[0] != '\xc2') return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    return second >= 0x80 && second <= 0x9f ? 2 : 0;
}

std::string escapeOf(unsigned char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    switch (c) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {'\\', 'x', digits[c >> 4U], digits[c & 15U]};
    }
}

template<class Real>
std::string textOf(Real value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

} // namespace

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    std::size_t escaped = 0; // bytes of a character that are still to be escaped
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (escaped == 0) escaped = isControl(c) ? 1 : longControl(text.substr(i));
        if (escaped > 0) {
            out += escapeOf(c);
            --escaped;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::size_t widthOf(std::string_view text) {
    const auto beginsCharacter = [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U;
    };
    return static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
}

std::string numberText(double value) {
    return textOf(value);
}

std::string numberText(float value) {
    return textOf(value);
}

void write(std::string_view text) {
    check(io_layer::writeText(io_layer::screen, text));
}

void writeError(std::string_view line) {
    io_layer::writeLine(io_layer::standardError, line);
    io_layer::flush(io_layer::standardError);
}

void flush() {
    check(io_layer::flush(io_layer::screen));
}

} // namespace screen
