#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <array>
#include <string>
#include <vector>

// A data set as it is shown by an index.
namespace xdmf {

struct Vector {
    std::string name; // as XML text
    std::array<std::size_t, 3> components;
};

struct Block {
    std::string path;    // of the data set, for messages
    std::string xmlFile; // its name relative to the index, as XML text
    data_set_file::DataSet set;
    std::vector<std::string> xmlNames; // of the variables, each once
    std::array<std::size_t, 3> coordinates{};
    std::vector<Vector> vectors;
    bool isopachs = false; // the times are zone numbers
};

// Finds coordinates and vectors, and makes the names of the variables unique. Throws
// std::runtime_error for a data set without variables X, Y and Z.
Block blockOf(std::string path, std::string xmlFile, data_set_file::DataSet set);

// Appends a zone as a uniform grid, with mesh, scalars and vectors. `time` is its <Time> element,
// or empty.
void appendGrid(std::string& out, const Block& block, const data_set_file::Zone& zone,
                const std::string& xmlName, const std::string& time);

} // namespace xdmf
