#pragma once

#include "tests/support/text_data_set.hpp"

#include <string>
#include <vector>

// Texts of data sets that tests compare.
namespace data_set {

using text_data_set::between;
using text_data_set::parse;
using text_data_set::split;
using text_data_set::Text;

// Returns the values of the array with this comment. Throws std::out_of_range if the zone has none.
const std::vector<double>& valuesOf(const Text& text, std::size_t zone, const std::string& label);

// Returns the fault, the names of the variables, and a line for each zone. The line has the numbers
// of the cell-centred and of the shared variables and the comments of the arrays. With `withValues`
// it also has the first value of each array, and the names have their units.
std::string summaryOf(const Text& text, bool withValues = false);

// Returns the parts with commas between them.
std::string join(const std::vector<std::string>& parts);

// Returns the contents of a data set as text, independent of which zones share them.
std::string contentsOf(const data_set_file::DataSet& set);

} // namespace data_set
