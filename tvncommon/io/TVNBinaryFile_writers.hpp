#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Writers of result files, in the layout that TVNBinaryFile tells. A message begins with the time
// stamp, one blank behind it; its leading blanks are dropped. A file that is there is replaced. A
// failed open or write ends the run with the file's name.
namespace TVNBinaryFile {

// While this is on, files are of the older generation: without the magic and what stands behind it.
void setUseOldFormat(bool on);

// Entries `first` to `last` of the array, counted from 1; none when `last` is below `first`.
// Entries that the array does not have end the run.
void write_i4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const std::int32_t> array);
void write_r4_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const float> array);
void write_r8_1d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::span<const double> array);

// These rows of an array that holds `columns` columns one behind the other.
void write_r4_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const float> array);
void write_r8_2d(const std::string& filename, std::string_view message, std::int32_t first,
                 std::int32_t last, std::int32_t columns, std::span<const double> array);

// Only the header, on a unit that is open for records. `typeCode` is "R08", "R04" or "I04";
// `status` is that of the write.
void writeFormattedHeader(int unit, std::string_view message, std::string_view typeCode,
                          std::int32_t numComponents, std::int32_t numValues, int& status);

} // namespace TVNBinaryFile
