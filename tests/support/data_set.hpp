#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <string>
#include <vector>

// Reads text data sets independently of the code that writes them, and gives texts of data sets
// that tests compare.
namespace data_set {

struct Text {
    data_set_file::DataSet set; // zones share only with zone 1
    std::vector<std::string> zoneLines;
    std::vector<std::vector<std::string>> labels; // comments of the arrays, by zone
    std::string fault;                            // first inconsistency, empty for a valid file
};

// Parses a text data set. Finds these inconsistencies: an array without a variable, a variable
// without an array, a wrong number of values or types, a variable name that occurs twice, an
// element node that is not in the zone.
Text parse(const std::string& text);

// Return the text between the first occurrence of `first` and the next `last` or the end, empty
// without `first`; the parts between the commas of a list; and the parts with commas between them.
std::string between(const std::string& text, const std::string& first, const std::string& last);
std::vector<std::string> split(const std::string& list);
std::string join(const std::vector<std::string>& parts);

// Returns the values of the array with this comment. Throws std::out_of_range if the zone has none.
const std::vector<double>& valuesOf(const Text& text, std::size_t zone, const std::string& label);

// Returns the fault, the names of the variables, and a line for each zone. The line has the numbers
// of the cell-centred and of the shared variables and the comments of the arrays. With `withValues`
// it also has the first value of each array, and the names have their units.
std::string summaryOf(const Text& text, bool withValues = false);

// Returns the contents of a data set as text, independent of which zones share them.
std::string contentsOf(const data_set_file::DataSet& set);

} // namespace data_set
