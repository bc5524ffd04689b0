#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

// Reads binary data sets, without any of the code that writes them.
namespace data_set_file {

// All values as 64-bit reals, which hold those of every type.
struct Zone {
    std::string title;
    std::int32_t type = 0;
    std::int32_t strand = -1;
    double time = 0;
    std::int64_t nodes = 0, elements = 0;
    std::vector<std::int32_t> types;         // 1 float, 2 double, 3 32-bit integer
    std::vector<bool> centred;               // the variable has a value for each element
    std::vector<std::int32_t> shares;        // zone from 1 that has the values, 0: this one
    std::int32_t connectivityShare = 0;      // zone from 1 that has the node lists, 0: this one
    std::vector<std::vector<double>> values; // by variable, empty where shared
    std::vector<std::int32_t> elementNodes;  // from 1, element by element
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

// Throws std::runtime_error, with the position, for what is not in the layout.
DataSet read(const std::string& path);
DataSet read(std::istream& in);

} // namespace data_set_file
