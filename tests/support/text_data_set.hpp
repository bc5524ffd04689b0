#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <string>
#include <vector>

// Reads text data sets independently of the code that writes them.
namespace text_data_set {

struct Text {
    data_set_file::DataSet set; // zones share only with zone 1
    std::vector<std::string> zoneLines;
    std::vector<std::vector<std::string>> labels; // comments of the arrays, by zone
    std::string fault;                            // first inconsistency, empty for a valid file
};

// Parses a file. Finds these inconsistencies: an array without a variable, a variable without an
// array, a wrong number of values or types, a variable name that occurs twice, an element node that
// is not in the zone.
Text parse(const std::string& text);

// Return the text between the first occurrence of `first` and the next `last` or the end, empty
// without `first`; and the parts between the commas of a list.
std::string between(const std::string& text, const std::string& first, const std::string& last);
std::vector<std::string> split(const std::string& list);

} // namespace text_data_set
