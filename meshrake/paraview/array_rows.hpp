#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Points and arrays of a legacy VTK file. A label has the form "POINT_DATA,SCALARS head float":
// keyword of the section, comma, line of the array. The array for which `dataIndex` is 1 opens the
// section; one with another keyword behind it opens none of its own. A failed write ends the run.
namespace paraview {

// Of the mesh that an array belongs to.
struct Extent {
    std::int32_t count = 0;             // nodes or elements
    const std::uint8_t* mask = nullptr; // one entry for each; only vectors look at it
    bool truncated = false;             // scalars have no values then
};

// Scalars, six to a line. Magnitudes below 1e-30 among the 64-bit values become 0, also in the
// array. An array without values gives its label alone.
void write_paraview_darray(std::span<double> values, const Extent& extent, std::string_view label,
                           std::int32_t dataIndex, int unit);
void write_paraview_array(std::span<const float> values, const Extent& extent,
                          std::string_view label, std::int32_t dataIndex, int unit);

// Vectors of three and of two components, one to a line, where the mask is set.
void write_paraview_vector_array(std::span<const float> vx, std::span<const float> vy,
                                 std::span<const float> vz, const Extent& extent,
                                 std::string_view label, std::int32_t dataIndex, int unit);
void write_paraview_vector_darray(std::span<const double> vx, std::span<const double> vy,
                                  std::span<const double> vz, const Extent& extent,
                                  std::string_view label, std::int32_t dataIndex, int unit);
void write_paraview_vector_2d_array(std::span<const float> vx, std::span<const float> vy,
                                    const Extent& extent, std::string_view label,
                                    std::int32_t dataIndex, int unit);
void write_paraview_vector_2d_darray(std::span<const double> vx, std::span<const double> vy,
                                     const Extent& extent, std::string_view label,
                                     std::int32_t dataIndex, int unit);

// The head line of the points and a line for each: its value of every coordinate.
// The values of a coordinate with an empty span are 0.
void writePoints(const std::vector<std::span<const double>>& coordinates, std::int32_t points,
                 int unit);

// Fields of these files: a real of 15 columns with five digits, which are stars for an exponent of
// three digits; an integer of 10 columns.
std::string narrowReal(double value);
std::string count(std::int64_t value);

} // namespace paraview
