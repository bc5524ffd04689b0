#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

// Numbers and words that stand free in a text.
//
// Blanks, tabs, one comma and line ends separate values. A value left out between two commas leaves
// its item as it was, "/" leaves all items still to come as they were, and "3*1.5" stands for three
// values of 1.5. A number is decimal; its exponent begins with e, E, d, D or with its sign alone
// ("1.5-3"). "inf", "infinity" and "nan" are reals in any case of letters. A number is rounded
// once, correctly; one too small for its type becomes 0.
//
// The readers return a status of the I/O layer and never end the run: `ok`, `endOfFile` when no
// text is left, `invalidData` for what is no number or is out of its type's range. An item whose
// reading failed, and those behind it, stay as they were.
namespace free_form {

// The first value of a text; `endOfFile` for a blank text.
int readReal(std::string_view text, double& value);
int readReal(std::string_view text, float& value);
int readInteger(std::string_view text, std::int32_t& value);

// The first word of a line. It ends at a blank, tab, comma or the line's end, so that it can be a
// path; in quotes, ' or ", it may hold those too, and a doubled quote is one of its characters.
int readWord(std::string_view line, std::string& word);

using Item = std::variant<double*, std::int32_t*>;

// Stores the next line of a source; false when there is none.
using NextLine = std::function<bool(std::string& line)>;

// Whether an item without a value stays as it was or is `invalidData`, as data files need it.
enum class LeftOut { kept, refused };

// Reads from a new line on, over as many lines as the items need; the rest of the last one is lost.
int readItems(const NextLine& nextLine, std::span<const Item> items,
              LeftOut leftOut = LeftOut::kept);
int readReals(const NextLine& nextLine, std::span<double> values, LeftOut leftOut = LeftOut::kept);

} // namespace free_form
