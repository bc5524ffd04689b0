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
// - A missing value, as between two commas, does not change its item. "/" ends the values: the
//   items that remain are not changed.
// - A number is decimal. Its exponent begins with e, E, d, D or directly with a sign ("1.5-3"). In
//   upper or lower case, "inf", "infinity" and "nan" are also reals.
// - Numbers are correctly rounded. One that is too small for its type becomes 0.
//
// The readers return a status of the I/O layer and never end the run: `ok`, `endOfFile` if no text
// is left, `invalidData` for a text that is not a number or is out of the range of its type. An
// item that could not be read, and the items after it, are not changed.
namespace free_form {

// Read the first value of a text. A blank text is `endOfFile`.
int readReal(std::string_view text, double& value);
int readReal(std::string_view text, float& value);
int readInteger(std::string_view text, std::int32_t& value);

// Reads the first word of a line, which may be a path. It ends at a blank, tab, comma or the end of
// the line. In quotes, ' or ", it may contain those; a doubled quote is one quote character.
int readWord(std::string_view line, std::string& word);

using Item = std::variant<double*, std::int32_t*>;

// Stores the next line of a source. Returns false if there is none.
using NextLine = std::function<bool(std::string& line)>;

// A missing value does not change its item, or is `invalidData`, as in data files.
enum class MissingValue { permitted, refused };

// Read the items from the next line on, over as many lines as they need. The rest of the last line
// is skipped.
int readItems(const NextLine& nextLine, std::span<const Item> items,
              MissingValue missing = MissingValue::permitted);
int readReals(const NextLine& nextLine, std::span<double> values,
              MissingValue missing = MissingValue::permitted);

} // namespace free_form
