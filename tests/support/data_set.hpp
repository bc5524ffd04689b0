#pragma once

#include "tools/data_set_file.hpp"

#include <map>
#include <string>
#include <vector>

// A reader of text data sets that knows nothing of the program: for what its files say, and for
// whether they hold together.
namespace data_set {

struct Zone {
    std::string line;
    std::string centred, shared; // lists of the zone line
    std::string written;         // comments in front of the arrays, separated by commas
    std::map<std::string, std::vector<std::string>> values; // by comment, in order where several
                                                            // arrays have the same
    std::vector<std::size_t> counts;                        // values of each array
};

struct DataSet {
    std::string fault;     // the first thing that does not hold together, empty for a good file
    std::string variables; // names, separated by commas
    std::vector<Zone> zones;
};

// Looks for as many arrays as variables are not shared, for their counts, for the type words, and
// for node numbers that are nodes of the zone.
DataSet parse(const std::string& text);

// The fault, or the names of the variables and what the zones have of them, for the eye: a line for
// each zone with the numbers of cell-centred and of shared variables and with the comments.
std::string summaryOf(const std::string& text);

// What stands between two texts, empty without the first and up to the end without the last; and
// the parts between the commas of a list.
std::string between(const std::string& text, const std::string& first, const std::string& last);
std::vector<std::string> split(const std::string& list);

// What a binary data set has, whatever its zones share: two are equal if these bytes are.
std::string contentsOf(const data_set_file::DataSet& set);

} // namespace data_set
