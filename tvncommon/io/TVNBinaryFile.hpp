#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Result files of the simulator. A result file is a record file (see io_layer.hpp) whose first
// record is a header of 80 characters and whose other records are the values.
//
//   offset length
//        0     55  time stamp, one blank, a free message; both may be missing
//       55      5  magic "#!TVN"
//       60      3  format version, "001"
//       63      2  byte order, "LE"
//       65      3  type of the values: "R08", "R04" or "I04"
//       68      2  number of components
//       70     10  number of values per component
//
// With the magic (newer format), a file of several components has one record of n values for each
// component. Without it (older format), the 80 characters are free text after the time stamp, and a
// file of several components has one record for each node, with a value of each component.
namespace TVNBinaryFile {

inline constexpr int headerLength = 80;
inline constexpr std::size_t magicOffset = 55;
inline constexpr std::string_view magicText = "#!TVN";

struct BinaryHeader {
    bool isOldFormat = true;
    std::string timestamp;
    std::string message;
    std::string magic;
    std::int32_t formatVersion = -1;
    std::string byteOrder = "UK";
    std::string dataType = "UNK";
    std::int32_t numComponents = 0;
    std::int32_t numValues = 0;
};

// Returns the first record of the file, 80 characters. A failed open or read ends the run.
std::string readTVNBinFileHeader(const std::string& filename);

// The same, but returns an empty text if the file does not exist.
std::string readHeaderIfExists(const std::string& filename);

// Parses the header. A short or malformed header ends the run; the banner names the file. Trailing
// blanks of the texts are dropped, leading blanks of the time stamp are kept.
BinaryHeader parseTVNBinFileHeader(std::string_view header, const std::string& filename);

bool isNewerFileFormat(std::string_view header);

// The effect of a missing file: it ends the run like any other failed open, or the function returns
// false and does not change arrays and header.
enum class Missing { endsRun, returnsFalse };

// Read a file of one component into the caller's array of `n` values. If the record is longer, its
// first `n` values are read. A shorter record and any other failure end the run with a banner that
// names the file. A negative `n` counts as 0. `header`, if given, receives the 80 characters of the
// header.
bool read_i4_1d(const std::string& filename, std::int32_t n, std::int32_t* array,
                std::string* header = nullptr, Missing missing = Missing::endsRun);
bool read_r4_1d(const std::string& filename, std::int32_t n, float* array,
                std::string* header = nullptr, Missing missing = Missing::endsRun);
bool read_r8_1d(const std::string& filename, std::int32_t n, double* array,
                std::string* header = nullptr, Missing missing = Missing::endsRun);

// The same for files of several components. `arrays` has an array of `n` values for each component.
bool read_r4_components(const std::string& filename, std::int32_t n, int components,
                        float* const* arrays, std::string* header = nullptr,
                        Missing missing = Missing::endsRun);
bool read_r8_components(const std::string& filename, std::int32_t n, int components,
                        double* const* arrays, std::string* header = nullptr,
                        Missing missing = Missing::endsRun);

// A file whose values are read later, one component after the other.
struct OpenFile {
    int unit = 0; // 0: the file is missing
    std::string name;
    std::string header; // headerLength characters
};

// Opens the file and reads its header. A failure other than a missing file ends the run.
OpenFile open(const std::string& filename, Missing missing);

// Returns whether the file has a record for each component, so that `readNextComponent` can read
// it.
bool hasRecordPerComponent(const OpenFile& file, int components);

// Returns whether the file also has all of these records, with at least `bytes` bytes in each.
// Reads their lengths only. A file that cannot be opened or read gives false.
bool hasCompleteRecords(const std::string& filename, int components, std::int64_t bytes);

// Reads the next component into the caller's array of `bytes` bytes; `component` counts from 1.
// Ends the run as the functions above do.
void readNextComponent(const OpenFile& file, int component, int components, std::int64_t bytes,
                       void* into);

} // namespace TVNBinaryFile
