#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <array>
#include <string>
#include <vector>

// A data set with the names that an index shows.
namespace xdmf {

struct Vector {
    std::string name; // as XML text
    std::array<std::size_t, 3> components;
};

struct Block {
    std::string path;    // of the data set, for messages
    std::string xmlFile; // its name relative to the index, as XML text
    data_set_file::DataSet set;
    std::string xmlTitle{};              // of its first zone, or the name of the file without zones
    std::vector<std::string> xmlNames{}; // of the variables, each once
    std::array<std::size_t, 3> coordinates{};
    std::vector<Vector> vectors{};
    std::vector<std::string> meshFiles{}; // by zone: `xmlFile` in a form for each mesh
};

// Finds coordinates and vectors, makes the names of the variables unique, and writes the name of
// the file in a different form for each mesh: ParaView keeps the mesh of a block for all times at
// which the text of its first <DataItem> is the same, although the positions differ. Throws
// std::runtime_error for a data set without variables X, Y and Z.
Block blockOf(std::string path, std::string xmlFile, data_set_file::DataSet set);

// Appends a zone, by its number from 0, as a uniform grid with mesh, scalars and vectors. `time` is
// its <Time> element, or empty.
void appendGrid(std::string& out, const Block& block, std::size_t number,
                const std::string& xmlName, const std::string& time);

} // namespace xdmf
