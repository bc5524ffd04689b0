#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Writers of result files in the layout of TVNBinaryFile.hpp, for other programs. A message begins
// with the time stamp and one blank; its leading blanks are dropped. An existing file is replaced.
// A failed open or write ends the run with a banner that names the file.
namespace TVNBinaryFile {

// After setUseOldFormat(true) files have the older format: their headers have no magic and nothing
// after it. `resetWriters` returns to the newer format.
void setUseOldFormat(bool on);
void resetWriters();

// Write the entries `first` to `last` of the array, counted from 1, or none if `last` is below
// `first`. An entry outside the array ends the run.
void write_i4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const std::int32_t> array);
void write_r4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const float> array);
void write_r8_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const double> array);

// The same for rows `first` to `last` of an array that is stored column after column.
void write_r4_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const float> array);
void write_r8_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const double> array);

// Writes only the header, on a unit that is open for records. `typeCode` is "R08", "R04" or "I04";
// `status` receives the status of the write.
void writeFormattedHeader(int unit, std::string_view message, std::string_view typeCode,
                          std::int32_t numComponents, std::int32_t numValues, int& status);

} // namespace TVNBinaryFile
