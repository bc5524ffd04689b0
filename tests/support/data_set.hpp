#pragma once

#include "tests/support/text_data_set.hpp"

#include <string>
#include <vector>

// What tests compare of data sets.
namespace data_set {

using text_data_set::between;
using text_data_set::parse;
using text_data_set::split;
using text_data_set::Text;

// The values of the array with this comment; throws std::out_of_range if the zone has none.
const std::vector<double>& valuesOf(const Text& text, std::size_t zone, const std::string& label);

// The fault, the names of the variables, and a line for each zone: numbers of the cell-centred and
// of the shared variables, comments of the arrays, `withValues` also the first value of each.
std::string summaryOf(const Text& text, bool withValues = false);

std::string join(const std::vector<std::string>& parts); // with commas

// Contents of a data set, independent of which zones share them: equal for equal contents.
std::string contentsOf(const data_set_file::DataSet& set);

} // namespace data_set
