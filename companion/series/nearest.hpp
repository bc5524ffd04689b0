#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <array>
#include <cstdint>

// Nodes and elements of a zone near a point. The functions read the coordinates, X, Y and Z, and
// for elements the node lists. They throw std::runtime_error for a data set without coordinates at
// its nodes, for a zone without nodes or elements, and if all coordinates are NaN.
namespace series {

using Point = std::array<double, 3>;

// Return the number, from 0, of the node or element at the least distance. Of several, it is the
// first. The distance of an element is that of the mean of its corners.
std::int64_t nearestNode(const data_set_file::File& file, const data_set_file::DataSet& set,
                         const data_set_file::Zone& zone, const Point& point);
std::int64_t nearestElement(const data_set_file::File& file, const data_set_file::DataSet& set,
                            const data_set_file::Zone& zone, const Point& point);

} // namespace series
