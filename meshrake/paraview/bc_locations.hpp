#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Locations of boundary conditions as points for a viewer.
namespace paraview {

// Converts <prefix>o.Bc.<name>.dat to <prefix>o.Bc.<name>.vtk for each name in the list
// <prefix>o.boundary_conditions. Skips names without a file. Reports a missing list on the screen.
// More than 1000 names and a damaged file end the run.
void addition_paraview_bclocationout();

// Converts one file. Its second line names the coordinates ("X", "Y", "Z" with the quotes). The
// third line has "I=" and the number of points. Then each coordinate has a line with "#" and the
// numbers, one to a line. If the line has no "#", the coordinate is 0 and has no numbers.
void convert_bc_file_into_paraviewformat(int inputUnit, int outputUnit);

// Removes leading blanks and tabs.
void remove_front_space_tab(std::string& text);

// Appends the names of a list to `names`: the first word of each line that contains "! name", cut
// at `nameLength` characters.
void get_bc_names_from_bc_file(int unit, std::vector<std::string>& names, std::size_t nameLength);

} // namespace paraview
