#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Points and arrays of a legacy VTK file. A label has the form "POINT_DATA,SCALARS head float":
// keyword of the section, comma, line of the array. The keyword and the number of values are
// written only with the first array of a section, for which `dataIndex` is 1. A failed write ends
// the run.
namespace paraview {

// The nodes or elements of an array.
struct Extent {
    std::int32_t count = 0;
    const std::uint8_t* mask = nullptr; // `count` entries, 1: included; only for vectors
    bool truncated = false;             // scalars are then written without values
};

// Write scalars, six per line, or only the label for a truncated extent. 64-bit values below 1e-30
// in magnitude become 0, also in the array.
void write_paraview_darray(std::span<double> values, const Extent& extent, std::string_view label,
                           std::int32_t dataIndex, int unit);
void write_paraview_array(std::span<const float> values, const Extent& extent,
                          std::string_view label, std::int32_t dataIndex, int unit);

// Write vectors of three or two components, one to a line, where the mask is 1.
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

// Writes the header line of the points and a line with the coordinates of each point. A coordinate
// with an empty span is 0.
void writePoints(const std::vector<std::span<const double>>& coordinates, std::int32_t points,
                 int unit);

// Return fields of these files. A real has 15 columns and five digits, and is all stars if its
// exponent has three digits. An integer has 10 columns.
std::string narrowReal(double value);
std::string count(std::int64_t value);

} // namespace paraview
