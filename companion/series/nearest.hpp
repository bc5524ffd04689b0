#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// Nodes and elements of a zone near points. The functions read the coordinates, X, Y and Z, and for
// elements the node lists, once for all points. They throw std::runtime_error for a data set
// without coordinates at its nodes, for an element with a node that is not in the zone, for a zone
// without nodes or elements, and if all coordinates are NaN.
namespace series {

using Point = std::array<double, 3>;

struct Nearest {
    std::int64_t number = -1; // of the node or element, from 0
    double distance = 0;
    bool isOutside = false; // x or y of the point is outside those of all nodes
};

// Return the node or element at the least distance from each point. Of several, it is the first.
// The distance of an element is that of the mean of its nodes.
std::vector<Nearest> nearestNodes(const data_set_file::File& file,
                                  const data_set_file::DataSet& set,
                                  const data_set_file::Zone& zone, std::span<const Point> points);
std::vector<Nearest> nearestElements(const data_set_file::File& file,
                                     const data_set_file::DataSet& set,
                                     const data_set_file::Zone& zone,
                                     std::span<const Point> points);

} // namespace series
