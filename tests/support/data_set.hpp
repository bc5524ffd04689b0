#pragma once

#include "tools/data_set_file.hpp"

#include <string>
#include <vector>

// Reads text data sets without any of the code that writes them.
namespace data_set {

struct Text {
    data_set_file::DataSet set; // the zones have no shares but those of zone 1
    std::vector<std::string> zoneLines;
    std::vector<std::vector<std::string>> labels; // comments of the arrays, by zone
    std::string fault;                            // first inconsistency, empty for a valid file
};

// Finds these inconsistencies: an array without a variable or the other way round, a wrong count of
// values or types, a variable name that occurs twice, an element node that is not in the zone.
Text parse(const std::string& text);

// The values of the array with this comment; throws std::out_of_range if the zone has none.
const std::vector<double>& valuesOf(const Text& text, std::size_t zone, const std::string& label);

// The fault, the names of the variables, and a line for each zone: numbers of the cell-centred and
// of the shared variables, comments of the arrays, `withValues` also the first value of each.
std::string summaryOf(const Text& text, bool withValues = false);

// Text between the first occurrence of `first` and the next `last` or the end; empty without the
// first. The parts between the commas of a list, and the list of such parts.
std::string between(const std::string& text, const std::string& first, const std::string& last);
std::vector<std::string> split(const std::string& list);
std::string join(const std::vector<std::string>& parts);

// Contents of a data set, independent of which zones share them: equal for equal contents.
std::string contentsOf(const data_set_file::DataSet& set);

} // namespace data_set
