#include "fuzz/support.hpp"

#include "tools/wide_real_reference.hpp"
#include "tvncommon/text/free_form.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Writes numbers as text and reads them back. The first two bytes of the input select width and
// digits, the rest are 64-bit reals.
namespace {

using fuzz::require;

bool same(double a, double b) {
    return a == b && std::signbit(a) == std::signbit(b);
}

bool isStars(const std::string& text) {
    return text.find_first_not_of("* ") == std::string::npos;
}

void checkWideReal(double value) {
    std::string field(number_formats::wideRealWidth, '?'), reference = field;
    number_formats::writeWideReal(value, field.data());
    if (!std::isfinite(value)) return;
    wide_real_reference::write(value, reference.data());
    require(field == reference, "wrong wide real: " + field);
    require(same(std::strtod(field.c_str(), nullptr), value), "wide real with another value");
}

// The value rounded to this number of significant digits.
double rounded(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
    return std::strtod(text, nullptr);
}

// A field of at least `sufficient` characters must contain the number.
void checkRounded(const std::string& field, double value, int digits, int width, int sufficient) {
    require(std::ssize(field) == width, "wrong width: " + field);
    if (!std::isfinite(value)) return;
    if (isStars(field)) return require(width < sufficient, "stars in a field of sufficient width");
    double back = 0;
    const int status = free_form::readReal(field, back);
    const double expected = rounded(value, digits);
    if (std::isinf(expected)) return;
    require(status == 0 && same(back, expected), "wrong rounded number: " + field);
}

void checkFixed(double value, int width, int decimals) {
    std::array<char, 64> field;
    const char* end = number_formats::writeFixedField(value, width, decimals, field.data());
    require(end == field.data() + width, "wrong width of a fixed field");
    if (!std::isfinite(value)) return;
    std::array<char, 512> buffer;
    std::snprintf(buffer.data(), buffer.size(), "%#.*f", decimals, value);
    std::string text = buffer.data();
    const std::size_t digit = std::signbit(value) ? 1 : 0;
    if (std::ssize(text) == width + 1 && text[digit] == '0' && decimals > 0) text.erase(digit, 1);
    const auto columns = static_cast<std::size_t>(width);
    text = text.size() > columns ? std::string(columns, '*')
                                 : std::string(columns - text.size(), ' ') + text;
    require(text == std::string_view(field.data(), columns), "fixed field is not " + text);
}

void checkInteger(std::int32_t value) {
    char text[32];
    std::snprintf(text, sizeof text, " %10d\n", value);
    if (std::strlen(text) > 12) std::strcpy(text, " **********\n");
    std::array<char, 12> field;
    number_formats::writeIntegerTail(&value, 1, field.data());
    require(std::string_view(field.data(), 12) == text, "wrong integer field");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (std::size_t at = 2; at + 8 <= size; at += 8) {
        double value = 0;
        std::int32_t integer = 0;
        std::memcpy(&value, data + at, 8);
        std::memcpy(&integer, data + at, 4);
        const int width = data[0] % 48 + 1, digits = data[1] % 17 + 1;
        checkWideReal(value);
        const auto exponent = number_formats::exponentField(value, width, digits);
        checkRounded(exponent, value, digits, width, digits + 6);
        if (width > 4) {
            const auto general = number_formats::generalField(value, width, digits);
            checkRounded(general, value, digits, width, digits + 7);
        }
        checkFixed(value, width, digits % 10);
        checkInteger(integer);
    }
    return 0;
}
