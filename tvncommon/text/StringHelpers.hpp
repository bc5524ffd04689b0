#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Operations on texts that are padded with blanks: trailing blanks are not part of the text.
// Positions count from 1.
namespace StringHelpers {

// Return the text without its trailing or its leading blanks. Other white space is kept.
std::string_view trimRight(std::string_view text);
std::string_view trimLeft(std::string_view text);

// Changes A to Z to lower case in place. Other bytes are not changed.
void lcase(std::string& text);

// Returns at most the first `width` characters, without trailing blanks.
std::string_view cut(std::string_view text, std::size_t width);

// Compares as if the shorter text were padded with blanks.
bool equalPadded(std::string_view a, std::string_view b);

// Returns the decimal text of a value, without leading blanks. A `format` such as "(I6)", "(I6.4)"
// or "(I0)" gives the greatest width and the least number of digits. If the text is wider, the
// result has stars, as many as the width. For any other format the result is empty and `iostat`
// receives the status of a failed write. Without `iostat` the run ends.
std::string toString_i4(std::int32_t value, std::string_view format = {}, int* iostat = nullptr);

// Returns the text of a wide real (see number_formats.hpp) without blanks.
std::string toString_r8(double value);

// Reads a 32-bit real in free form. If that fails, `value` is not changed and `iostat` receives the
// status. Without `iostat` the run ends.
void str2r4(std::string_view text, float& value, int* iostat = nullptr);

// Return the position of the first character from `start` on that is, or is not, in `chars`. If
// there is none, return the trimmed length plus 1. A `start` below 1 counts as 1.
std::size_t findFirstOf(std::string_view text, std::string_view chars, std::int64_t start = 1);
std::size_t findFirstNotOf(std::string_view text, std::string_view chars, std::int64_t start = 1);

// Returns the text without the characters in `chars` and without trailing blanks.
std::string removeCopy(std::string_view text, std::string_view chars);

// Moves the first token of `text` to `token` and removes the delimiter after it. With `collapse` it
// also removes the delimiters that follow directly. Returns false if `text` was blank.
bool chomp(std::string& text, std::string_view delimiters, bool collapse, std::string& token);

} // namespace StringHelpers
