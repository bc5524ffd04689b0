#pragma once

#include <cstdint>
#include <string>

// Numbers as text in fields of fixed width. The row writers fill the caller's buffer and allocate
// nothing; the caller sees to its size. Nothing here ends the run: a number that does not fit its
// field fills it with stars.
namespace number_formats {

inline constexpr int wideRealWidth = 26;
inline constexpr int valuesPerRow = 5;
inline constexpr int realRowBytes = valuesPerRow * wideRealWidth + 1;
inline constexpr int integerWidth = 10;
inline constexpr int integerRowBytes = valuesPerRow * (integerWidth + 1) + 1;

// The wide real: 17 significant digits, correctly rounded, a tie to the even digit. Zero and
// magnitudes that round to 0.1 and more, but less than 10^17, are in fixed notation with five
// blanks behind; any other is 0.ddd...E+ddd. `field` takes 26 bytes, all of them written.
void writeWideReal(double value, char* field);

// The same without the blanks around it.
std::string wideRealText(double value);

// `rows` rows of five wide reals, 131 bytes each with their line feed. Returns the end of the text.
char* writeRealRows(const double* values, std::int64_t rows, char* out);
char* writeRealRows(const float* values, std::int64_t rows, char* out);

// A last row of 1 to 4 wide reals and its line feed.
char* writeRealTail(const double* values, int count, char* out);
char* writeRealTail(const float* values, int count, char* out);

// `rows` rows of five integers, each a blank and 10 columns; 56 bytes a row with its line feed.
char* writeIntegerRows(const std::int32_t* values, std::int64_t rows, char* out);

// A last row of 1 to 4 integers and its line feed.
char* writeIntegerTail(const std::int32_t* values, int count, char* out);

// `rows` rows of `perRow` integers, each 10 columns and a blank, with a line feed behind each row.
char* writeConnectivityRows(const std::int32_t* values, std::int64_t rows, int perRow, char* out);

// 0.dddE+dd with `digits` (at least 1) behind the point, right-aligned in `width` columns. An
// exponent of three digits takes the place of the E; the zero before the point goes when the field
// is one column short.
std::string exponentField(double value, int width, int digits);

// Fixed notation with `decimals` (0 to 9) behind the point, right-aligned in `width` (at most 48)
// columns of `field`; returns its end. A tie goes to the even digit. The zero before the point goes
// when the field is one column short.
char* writeFixedField(double value, int width, int decimals, char* field);

// `digits` significant digits (at most 17), right-aligned in `width` (at least 5) columns: fixed
// notation followed by four blanks for zero and for magnitudes that round to 0.1 and more, but less
// than 10^digits; any other as `exponentField`.
std::string generalField(double value, int width, int digits);

// Right-aligned in `width` columns.
std::string integerField(std::int64_t value, int width);

} // namespace number_formats
