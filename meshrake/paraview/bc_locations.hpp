#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Locations of boundary conditions as points for a viewer.
namespace paraview {

// Turns <prefix>o.Bc.<name>.dat into <prefix>o.Bc.<name>.vtk for each name in the list
// <prefix>o.boundary_conditions. A name without a file is passed over, and a missing list is told
// on the screen. More than 1000 names and a damaged file end the run.
void addition_paraview_bclocationout();

// One file. Its second line names the coordinates ("X", "Y", "Z" in their quotes), the third holds
// "I=" and the number of points; then for each coordinate a line with "#" and the numbers, one to a
// line. Coordinates without the "#" are 0.
void convert_bc_file_into_paraviewformat(int inputUnit, int outputUnit);

// Removes leading blanks and tabs.
void remove_front_space_tab(std::string& text);

// Adds the names of a list to `names`: of each line with "! name" in it the first word, at most
// `nameLength` characters.
void get_bc_names_from_bc_file(int unit, std::vector<std::string>& names, std::size_t nameLength);

} // namespace paraview
