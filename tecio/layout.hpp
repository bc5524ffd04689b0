#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The bytes of a data set. All numbers are little-endian, all texts have 4 bytes for each character
// and a 0 after them. A file is
//
//     head       "#!TDV112", byte order 1, file type 0, title, number of variables, their names
//     records    799.0 for each value of the data set, 899.0 for each of a variable
//     headers    299.0 for each zone, and
//     padding    799.0 records whose values are blanks, which later zone headers replace
//     357.0      end of the headers
//     data       299.0 for each zone, in the order of the headers
//
// No position is stored: all of them follow from the headers. A zone header is on one page of the
// file unless it is about as long as one, and padding fills each of these pages. So one page can be
// rewritten while the file stays valid. The system writes a page at once: a kill does not cut it.
namespace tecio {

inline constexpr float zoneMarker = 299.0F;
inline constexpr float auxMarker = 799.0F;
inline constexpr float variableAuxMarker = 899.0F;
inline constexpr float endMarker = 357.0F;

using Bytes = std::string;
std::int64_t sizeOf(const Bytes& bytes);

struct Head {
    std::string title;
    std::vector<std::string> variables;
};

// A zone as its two headers have it. The lists have an entry for each variable.
struct Zone {
    std::string title;
    std::int32_t type = 0;
    std::int32_t strand = -1; // -1: static
    double time = 0;
    std::int64_t nodes = 0, elements = 0; // both below 2^31
    std::vector<std::int32_t> types;      // 1 float, 2 double, 3 int32_t
    std::vector<std::int32_t> locations;  // 1 nodes, 0 elements
    std::vector<std::int32_t> shares;     // zone that has the values, 0: this one
    std::int32_t connectivityShare = 0;   // zone that has the node lists, 0: this one
};

inline constexpr std::int64_t rangeBytes = 16; // least and greatest value of a variable

std::int64_t valueBytes(std::int32_t type);
std::int64_t valueCount(const Zone& zone, std::size_t variable);
std::int64_t nodeMapCount(const Zone& zone);  // 0 when it is shared
std::int32_t greatestShare(const Zone& zone); // of all zones whose arrays it shares

// Positions in the data of a zone, from its marker on.
struct DataPart {
    std::int64_t ranges = 0;          // of the variables that are not shared
    std::vector<std::int64_t> values; // of each variable; 0 for a shared one
    std::int64_t nodeMap = 0;
    std::int64_t size = 0;
};
DataPart dataPartOf(const Zone& zone);

Bytes headBytes(const Head& head);
Bytes auxBytes(std::string_view name, std::string_view value);
Bytes variableAuxBytes(std::int32_t variable, std::string_view name, std::string_view value);
Bytes zoneHeaderBytes(const Zone& zone);
Bytes dataHeadBytes(const Zone& zone); // the bytes before the ranges

inline constexpr std::int64_t pageBytes = 4096;
std::int64_t leftOnPage(std::int64_t at); // bytes from `at` to the end of its page

// The padding record at this position: up to the end of the page, or of the next one if the page
// has too few bytes left for a record.
Bytes paddingAt(std::int64_t at);
Bytes headersEndBytes();

// Append to `out`, which begins at `at` in the file: a zone header, after padding if it does not
// fit on its page; padding up to `end`; padding up to the end of the page, unless `out` ends there.
void addHeader(Bytes& out, std::int64_t at, const Bytes& header);
void addPadding(Bytes& out, std::int64_t at, std::int64_t end);
void padPage(Bytes& out, std::int64_t at);

// Upper bound of the pages that a header and the padding after it take; 1 for all but long headers.
std::int64_t pagesOf(const Bytes& header);

// Reads values from bytes. A read that fails sets `good` to false and returns 0 or an empty text.
struct Reader {
    std::string_view bytes;
    std::size_t position = 0;
    bool good = true;
};
std::int32_t readInt(Reader& reader);
float readFloat(Reader& reader);
std::uint64_t readWord(Reader& reader);
std::string readText(Reader& reader);
Head readHead(Reader& reader);
Zone readZone(Reader& reader, std::size_t variables); // zone header, then data head

} // namespace tecio
