#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The bytes of a data set, see docs/formats.md, "Binary data set". All numbers are little-endian. A
// text has 4 bytes for each character and a 0 after the last. A file consists of
//
//     file header  "#!TDV112", byte order 1, file type 0, title, number of variables, their names
//     auxiliary    799.0 and a value of the data set, or 899.0 and a value of a variable, each
//     headers      299.0 and the header of a zone, for each zone
//     padding      799.0 records whose values are blanks, which later zone headers replace
//     357.0        end of the headers
//     data         299.0 and the data of a zone, for each zone in the order of the headers
//
// No position is stored: all positions follow from the headers. A zone header does not cross the
// end of a page of the file, unless it is too long for one page. Padding fills the rest of the
// page. So the file stays valid while one page is rewritten: the system writes a page as a whole,
// even if the process is killed.
namespace tecio {

inline constexpr float zoneMarker = 299.0F;
inline constexpr float auxMarker = 799.0F;
inline constexpr float variableAuxMarker = 899.0F;
inline constexpr float endMarker = 357.0F;

using Bytes = std::string;
std::int64_t sizeOf(const Bytes& bytes);

struct FileHeader {
    std::string title;
    std::vector<std::string> variables;
};

// Returns the file header for variables whose names are separated by commas.
FileHeader fileHeaderOf(std::string_view title, std::string_view variableList);

// A zone as described by its header and the beginning of its data. The lists have an entry for each
// variable.
struct Zone {
    std::string title;
    std::int32_t type = 0;
    std::int32_t strand = -1; // -1: static
    double time = 0;
    std::int64_t nodes = 0, elements = 0; // both below 2^31
    std::vector<std::int32_t> types;      // 1 float, 2 double, 3 int32_t
    std::vector<std::int32_t> locations;  // 1 at nodes, 0 in elements
    std::vector<std::int32_t> shares;     // zone that has the values, from 1; 0: this one
    std::int32_t connectivityShare = 0;   // zone that has the node lists, from 1; 0: this one
};

inline constexpr std::int64_t rangeBytes = 16; // least and greatest value of a variable

std::int64_t valueBytes(std::int32_t type);                      // bytes of a value of this type
std::int64_t valueCount(const Zone& zone, std::size_t variable); // nodes or elements
std::int64_t nodeMapCount(const Zone& zone);  // node numbers of all elements; 0 if shared
std::int32_t greatestShare(const Zone& zone); // greatest number of a zone whose arrays it shares

// Offsets in the data of a zone, in bytes from its marker.
struct ZoneLayout {
    std::int64_t ranges = 0;          // of the variables that are not shared
    std::vector<std::int64_t> values; // of each variable; 0 for a shared one
    std::int64_t nodeMap = 0;
    std::int64_t size = 0;
};
ZoneLayout layoutOf(const Zone& zone);

Bytes fileHeaderBytes(const FileHeader& header);
Bytes auxBytes(std::string_view name, std::string_view value);
Bytes variableAuxBytes(std::int32_t variable, std::string_view name, std::string_view value);
Bytes zoneHeaderBytes(const Zone& zone);
Bytes dataBeginBytes(const Zone& zone); // beginning of the data, up to the ranges

inline constexpr std::int64_t pageBytes = 4096; // the system's unit of writing
std::int64_t leftOnPage(std::int64_t at);       // bytes from `at` to the end of its page

// Returns the padding record for this position. It ends at the end of the page or, if the rest of
// the page is too short for a record, at the end of the next page.
Bytes paddingAt(std::int64_t at);
Bytes headersEndBytes();

// Append to `out`, whose first byte is at position `at` of the file:
// - addHeader: a zone header, after padding if it does not fit on the page
// - addPadding: padding up to the end of the page of `end`
// - padPage: padding up to the end of the page, unless `out` ends there
void addHeader(Bytes& out, std::int64_t at, const Bytes& header);
void addPadding(Bytes& out, std::int64_t at, std::int64_t end);
void padPage(Bytes& out, std::int64_t at);

// Returns an upper bound of the pages that a header and the padding after it take: 1 except for
// headers of about a page or more.
std::int64_t pagesOf(const Bytes& header);

// Reads values from bytes. A read that fails sets `good` to false. It and all later reads return 0
// or an empty text.
struct Reader {
    std::string_view bytes;
    std::size_t position = 0;
    bool good = true;
};
std::int32_t readInt(Reader& reader);
float readFloat(Reader& reader);
std::uint64_t readWord(Reader& reader);
std::string readText(Reader& reader);
FileHeader readFileHeader(Reader& reader);
Zone readZone(Reader& reader, std::size_t variables); // zone header, then beginning of the data

} // namespace tecio
