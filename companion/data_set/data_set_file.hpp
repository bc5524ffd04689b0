#pragma once

#include "tvncommon/io/byte_file.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Reads binary data sets. It shares no code with the writer. docs/formats.md, "Binary data set",
// describes the layout. Every function throws std::runtime_error, with the name of the file, the
// position and the fault, for a file that cannot be read or that does not have this layout. Counts
// are compared with the size of the file before memory is allocated.
namespace data_set_file {

// One output time of a domain.
struct Zone {
    std::string title;
    std::int32_t type = 0;    // 1 lines, 2 triangles, 3 quadrilaterals, 4 tetrahedra, 5 bricks
    std::int32_t strand = -1; // below 0: the zone has no time
    double time = 0;
    std::int64_t nodes = 0, elements = 0;
    std::vector<std::int32_t> types;    // of each variable: 1 float, 2 double, 3 32-bit integer
    std::vector<bool> centred;          // the variable has a value for each element
    std::vector<std::int32_t> shares;   // zone from 1 that has the values, or 0 for this one
    std::int32_t connectivityShare = 0; // zone from 1 that has the node lists, or 0 for this one

    // Positions of the arrays in the file. Shared arrays are in the data of an earlier zone.
    std::vector<std::int64_t> valuesAt; // of each variable
    std::int64_t elementNodesAt = 0;
    std::vector<double> ranges; // least and greatest value of each variable that is not shared

    // Only `read` fills these. Shared arrays are empty. Values are converted to 64-bit reals, which
    // is exact for all types.
    std::vector<std::vector<double>> values;
    std::vector<std::int32_t> elementNodes; // from 1, element by element
};

struct DataSet {
    std::string title;
    std::vector<std::string> variables;
    std::map<std::string, std::string> aux;
    std::map<std::int32_t, std::string> units; // by variable, from 1
    std::vector<Zone> zones;
    std::int64_t padding = 0;  // bytes of blanks in padding records
    std::int64_t trailing = 0; // bytes after the last zone
};

// A file that is open for reading. The destructor closes it.
struct File {
    explicit File(std::string name);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::string path;
    std::int64_t size = 0;
    byte_file::File bytes;
};

// Reads the headers, and the beginning of the data of each zone, but neither values nor node lists.
// All arrays of the zones are inside the file.
DataSet scan(File& file);

// Returns the names, each once: a repeated name gets a number, as in "Head (2)".
std::vector<std::string> uniqueNames(const std::vector<std::string>& names);

// Number of nodes of an element, by zone type.
std::int64_t cornersOf(const Zone& zone);

// Number of values of a variable (from 0), and the bytes of one.
std::int64_t valueCount(const Zone& zone, std::size_t variable);
std::int64_t valueBytes(const Zone& zone, std::size_t variable);

// Read all values of a variable (from 0), or the one of a node or element (from 0), also if the
// zone shares them.
std::vector<double> readValues(const File& file, const Zone& zone, std::size_t variable);
double readValue(const File& file, const Zone& zone, std::size_t variable, std::int64_t index);

// Reads the node lists: elements by corners, node numbers from 1, also if the zone shares them.
std::vector<std::int32_t> readElementNodes(const File& file, const Zone& zone);

// Fails for an element with a node that is not in the zone.
void checkElementNodes(const File& file, const Zone& zone);

// Reads all values of a variable that the zone does not share, and compares them with the least and
// greatest value in the file.
std::vector<double> readCheckedValues(const File& file, const Zone& zone, std::size_t variable);

// Reads a whole data set and compares all values with their ranges.
DataSet read(const std::string& path);

} // namespace data_set_file
