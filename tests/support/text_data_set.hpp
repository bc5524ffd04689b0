#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <string>
#include <vector>

// Reads text data sets without any of the code that writes them.
namespace text_data_set {

struct Text {
    data_set_file::DataSet set; // the zones have no shares but those of zone 1
    std::vector<std::string> zoneLines;
    std::vector<std::vector<std::string>> labels; // comments of the arrays, by zone
    std::string fault;                            // first inconsistency, empty for a valid file
};

// Finds these inconsistencies: an array without a variable or the other way round, a wrong count of
// values or types, a variable name that occurs twice, an element node that is not in the zone.
Text parse(const std::string& text);

// Text between the first occurrence of `first` and the next `last` or the end; empty without the
// first. And the parts between the commas of a list.
std::string between(const std::string& text, const std::string& first, const std::string& last);
std::vector<std::string> split(const std::string& list);

} // namespace text_data_set
