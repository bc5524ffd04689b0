#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

// List-directed ("free form") reading of numbers and words.
//
// - Blanks, tabs, one comma or line ends separate values. "3*1.5" means three values of 1.5.
// - A missing value, as between two commas, does not change its item; "/" does not change any of
//   the items that remain.
// - A number is decimal. Its exponent begins with e, E, d, D or directly with a sign ("1.5-3").
// "inf",
//   "infinity" and "nan" are reals, in upper or lower case. Numbers are correctly rounded; one too
//   small for its type becomes 0.
//
// The readers return a status of the I/O layer and never end the run: `ok`, `endOfFile` if no text
// is left, `invalidData` for a text that is not a number or is out of the range of its type. An
// item whose reading failed, and the items after it, are not changed.
namespace free_form {

// Read the first value of a text; `endOfFile` for a blank text.
int readReal(std::string_view text, double& value);
int readReal(std::string_view text, float& value);
int readInteger(std::string_view text, std::int32_t& value);

// Reads the first word of a line, which may be a path. It ends at a blank, tab, comma or the end of
// the line. In quotes, ' or ", it may contain those; a doubled quote is one quote character.
int readWord(std::string_view line, std::string& word);

using Item = std::variant<double*, std::int32_t*>;

// Stores the next line of a source; false if there is none.
using NextLine = std::function<bool(std::string& line)>;

// Whether a missing value leaves its item unchanged, or is `invalidData` as in data files.
enum class LeftOut { kept, refused };

// Read the items from the next line on, over as many lines as they need. The rest of the last line
// is skipped.
int readItems(const NextLine& nextLine, std::span<const Item> items,
              LeftOut leftOut = LeftOut::kept);
int readReals(const NextLine& nextLine, std::span<double> values, LeftOut leftOut = LeftOut::kept);

} // namespace free_form
