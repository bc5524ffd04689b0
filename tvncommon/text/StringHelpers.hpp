#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Operations on texts whose trailing blanks do not count. Positions count from 1.
namespace StringHelpers {

// The text without its trailing or its leading blanks. Other white space stays.
std::string_view trimRight(std::string_view text);
std::string_view trimLeft(std::string_view text);

// Folds A to Z to lower case in place; all other bytes stay.
void lcase(std::string& text);

// The first `width` characters at most, without trailing blanks.
std::string_view cut(std::string_view text, std::size_t width);

// Comparison that pads the shorter text with blanks.
bool equalPadded(std::string_view a, std::string_view b);

// Decimal text of a value. A `format` such as "(I6)", "(I6.4)" or "(I0)" sets the least number of
// digits and the width that the text must not exceed: a row of stars stands for one that would. A
// format that is none of these gives the empty text and the status of a failed write in `iostat`;
// without `iostat` it ends the run.
std::string toString_i4(std::int32_t value, std::string_view format = {}, int* iostat = nullptr);

// A value with its 17 digits and no blanks.
std::string toString_r8(double value);

// Reads a single-precision number in free form. `value` stays as it was when the text holds no
// number, which ends the run unless `iostat` takes the status.
void str2r4(std::string_view text, float& value, int* iostat = nullptr);

// Position of the first character from `start` on that is one, or is none, of `chars`; the trimmed
// length plus 1 when there is none. A `start` below 1 counts as 1.
std::size_t findFirstOf(std::string_view text, std::string_view chars, std::int64_t start = 1);
std::size_t findFirstNotOf(std::string_view text, std::string_view chars, std::int64_t start = 1);

// The text without all characters that are in `chars`, and without trailing blanks.
std::string removeCopy(std::string_view text, std::string_view chars);

// Cuts the first token off `text`, together with the delimiter that ends it; with `collapse` also
// with all delimiters that follow directly. False for a text that is blank at the call.
bool chomp(std::string& text, std::string_view delimiters, bool collapse, std::string& token);

} // namespace StringHelpers
