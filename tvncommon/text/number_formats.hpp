#pragma once

#include <cstdint>
#include <string>

// Numbers as text in fields of fixed width. The row writers fill the caller's buffer, which must be
// large enough, and allocate nothing. Nothing here ends the run: a number that does not fit its
// field becomes stars.
namespace number_formats {

inline constexpr int wideRealWidth = 26;
inline constexpr int valuesPerRow = 5;
inline constexpr int realRowBytes = valuesPerRow * wideRealWidth + 1;
inline constexpr int integerWidth = 10;
inline constexpr int integerRowBytes = valuesPerRow * (integerWidth + 1) + 1;

// Writes a wide real: 17 significant digits, correctly rounded, a tie to the even digit. Zero and
// magnitudes that round to 0.1 and more, but less than 10^17, are in fixed notation followed by
// five blanks. Any other number is 0.ddd...E+ddd. `field` receives 26 bytes.
void writeWideReal(double value, char* field);

// Returns the same text without blanks.
std::string wideRealText(double value);

// All row writers return the end of the text.
//
// Writes `rows` rows of five wide reals, 131 bytes each with the line feed.
char* writeRealRows(const double* values, std::int64_t rows, char* out);
char* writeRealRows(const float* values, std::int64_t rows, char* out);

// Writes a last row of 1 to 4 wide reals and a line feed.
char* writeRealTail(const double* values, int count, char* out);
char* writeRealTail(const float* values, int count, char* out);

// Writes `rows` rows of five integers, each a blank and 10 columns: 56 bytes a row with the line
// feed.
char* writeIntegerRows(const std::int32_t* values, std::int64_t rows, char* out);

// Writes a last row of 1 to 4 integers and a line feed.
char* writeIntegerTail(const std::int32_t* values, int count, char* out);

// Writes `rows` rows of `perRow` integers, each 10 columns and a blank, and a line feed after each
// row.
char* writeConnectivityRows(const std::int32_t* values, std::int64_t rows, int perRow, char* out);

// Returns 0.dddE+dd with `digits` (at least 1) after the point, right-aligned in `width` columns.
// An exponent of three digits has no E. The zero before the point is left out if the field would be
// one column too narrow.
std::string exponentField(double value, int width, int digits);

// Writes fixed notation with `decimals` (0 to 9) digits after the point, right-aligned in `width`
// (at most 48) columns, and returns the end of the field. A tie is rounded to the even digit. The
// zero before the point is left out if the field would be one column too narrow.
char* writeFixedField(double value, int width, int decimals, char* field);

// Returns `digits` significant digits (at most 17), right-aligned in `width` (at least 5) columns.
// Zero and magnitudes that round to 0.1 and more, but less than 10^digits, are in fixed notation
// followed by four blanks. Any other number is as from `exponentField`.
std::string generalField(double value, int width, int digits);

// Returns the number right-aligned in `width` columns.
std::string integerField(std::int64_t value, int width);

} // namespace number_formats
