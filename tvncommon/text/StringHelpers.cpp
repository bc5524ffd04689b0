#include "tvncommon/text/StringHelpers.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <charconv>

namespace StringHelpers {

namespace {

constexpr int maximumWidth = 256;

struct IntegerEdit {
    int width = 0; // 0: as wide as the value needs
    int minimumDigits = 1;
};

// Reads a number at the beginning of `text` and removes it.
bool readNumber(std::string_view& text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc() && number >= 0 && number <= maximumWidth;
}

bool parseEdit(std::string_view format, IntegerEdit& edit) {
    std::string text = removeCopy(format, " ");
    lcase(text);
    if (!text.starts_with("(i") || !text.ends_with(')')) return false;
    std::string_view rest = std::string_view(text).substr(2, text.size() - 3);
    if (!readNumber(rest, edit.width)) return false;
    if (rest.empty()) return true;
    if (rest.front() != '.') return false;
    rest.remove_prefix(1);
    return readNumber(rest, edit.minimumDigits) && rest.empty() &&
           (edit.width == 0 || edit.minimumDigits <= edit.width);
}

std::string applyEdit(std::int32_t value, const IntegerEdit& edit) {
    const auto least = static_cast<std::size_t>(edit.minimumDigits);
    const auto width = static_cast<std::size_t>(edit.width);
    if (value == 0 && least == 0) return {};
    std::string text = std::to_string(value);
    const std::size_t sign = value < 0 ? 1 : 0;
    if (text.size() < least + sign) text.insert(sign, least + sign - text.size(), '0');
    if (width > 0 && text.size() > width) text.assign(width, '*');
    return text;
}

// A search that finds nothing returns the position after the text.
std::size_t positionOf(std::size_t found, std::string_view text) {
    return std::min(found, text.size()) + 1;
}

std::size_t offset(std::int64_t start) {
    return static_cast<std::size_t>(std::max<std::int64_t>(start, 1) - 1);
}

} // namespace

std::string_view trimRight(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view trimLeft(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

void lcase(std::string& text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
}

std::string_view cut(std::string_view text, std::size_t width) {
    return trimRight(text.substr(0, width));
}

bool equalPadded(std::string_view a, std::string_view b) {
    return trimRight(a) == trimRight(b);
}

std::string toString_i4(std::int32_t value, std::string_view format, int* iostat) {
    IntegerEdit edit;
    const bool known = format.empty() || parseEdit(format, edit);
    if (iostat) *iostat = known ? io_layer::ok : io_layer::writeFailed;
    if (known) return applyEdit(value, edit);
    if (!iostat)
        error::fatalErrorStat(io_layer::writeFailed,
                              "No format of an integer: \"" + std::string(format) + "\"");
    return {};
}

std::string toString_r8(double value) {
    return number_formats::wideRealText(value);
}

void str2r4(std::string_view text, float& value, int* iostat) {
    const int status = free_form::readReal(text, value);
    if (iostat)
        *iostat = status;
    else if (status != io_layer::ok)
        error::fatalErrorStat(status,
                              "Failed to read a number from text: \"" + std::string(text) + "\"");
}

std::size_t findFirstOf(std::string_view text, std::string_view chars, std::int64_t start) {
    text = trimRight(text);
    return positionOf(text.find_first_of(chars, offset(start)), text);
}

std::size_t findFirstNotOf(std::string_view text, std::string_view chars, std::int64_t start) {
    text = trimRight(text);
    return positionOf(text.find_first_not_of(chars, offset(start)), text);
}

std::string removeCopy(std::string_view text, std::string_view chars) {
    std::string copy(text);
    std::erase_if(copy, [&](char c) { return chars.find(c) != std::string_view::npos; });
    copy.resize(trimRight(copy).size());
    return copy;
}

bool chomp(std::string& text, std::string_view delimiters, bool collapse, std::string& token) {
    const std::string_view whole = trimRight(text);
    const std::size_t tokenEnd = std::min(whole.find_first_of(delimiters), whole.size());
    std::size_t restBegin = std::min(tokenEnd + 1, whole.size());
    if (collapse) restBegin = std::min(whole.find_first_not_of(delimiters, tokenEnd), whole.size());
    const bool hadText = !whole.empty();
    token = trimRight(whole.substr(0, tokenEnd));
    text = std::string(whole.substr(restBegin));
    return hadText;
}

} // namespace StringHelpers
