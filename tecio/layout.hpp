#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The bytes of a data set. All numbers are little-endian, all texts have 4 bytes for each character
// and a 0 behind them. A file is
//
//     head       "#!TDV112", byte order 1, file type 0, title, number of variables, their names
//     records    799.0 for each value of the data set, 899.0 for each of a variable
//     headers    299.0 for each zone
//     room       a 799.0 record whose value is blanks: zone headers to come take its place
//     357.0      end of the headers
//     data       299.0 for each zone, in the order of the headers
//
// Nothing tells a position: all of them follow from the headers.
namespace tecio {

using Bytes = std::string;

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
std::int64_t nodeMapCount(const Zone& zone); // 0 when it is shared

// Positions in the data of a zone, from its marker on.
struct DataPart {
    std::int64_t ranges = 0;          // those of the variables with values of their own
    std::vector<std::int64_t> values; // of each variable; 0 for a shared one
    std::int64_t nodeMap = 0;
    std::int64_t size = 0;
};
DataPart dataPartOf(const Zone& zone);

Bytes headBytes(const Head& head);
Bytes auxBytes(std::string_view name, std::string_view value);
Bytes variableAuxBytes(std::int32_t variable, std::string_view name, std::string_view value);
Bytes zoneHeaderBytes(const Zone& zone);
Bytes dataHeadBytes(const Zone& zone); // what stands in front of the ranges

// The room: its first bytes, a filling of blanks, its last bytes with the end of the headers.
Bytes roomBegin();
Bytes roomBlanks(std::int64_t size);
Bytes roomEnd();

// Takes bytes apart. A read that fails leaves `good` false and gives zeros and empty texts.
struct Reader {
    std::string_view bytes;
    std::size_t position = 0;
    bool good = true;
};
std::int32_t readInt(Reader& reader);
float readFloat(Reader& reader);
std::string readText(Reader& reader);
Head readHead(Reader& reader);
Zone readZone(Reader& reader, std::size_t variables); // zone header, then data head

} // namespace tecio
