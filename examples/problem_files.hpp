#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "examples/problem_domains.hpp"
#include "examples/problem_mesh.hpp"
#include "examples/problem_species.hpp"
#include "examples/problem_variables.hpp"
#include "examples/problem_weather.hpp"

// The files of a problem, record by record. record_file.hpp gives the layout of a record.
//
// <prefix>o.gen                  version, 80 characters
//                                number of title lines
//                                the lines, 60 characters each, in one record
//                                handle of the unit system
//
// <prefix>o.species              number of mobile species
//                                number of immobile species
//                                per species, mobile ones first, its name, 50 characters
//                                per mobile species, logical: it is heat
//                                per mobile species, logical: it consists of particles
//
// <prefix>o.hmc                  three settings of the simulator
//                                logical, a further one
//                                number of origins of water
//                                two further settings
//                                per origin, its name, 80 characters, and two settings
//
// <prefix>o.coordinates_pm       number of nodes
//                                x, y, z of each node, reals of 64 bits
//                                cells along x, cells along y, number of sheets
//
// <prefix>o.coordinates_<tag>    number of nodes
//                                coupling scheme: 1 multi-node, 0 common-node
//                                per node, its node of pm
//                                per node of pm, the global number of the domain's node, or 0
//   and for olf                  logical: a cutoff wall doubles nodes. If so,
//                                number of walls
//                                number of sides of a wall
//                                per node, logical: it is doubled
//                                per side, per node: the global node number on that side, or 0
//                                per node, the number of its wall, or 0
//
// <prefix>o.elements_<tag>       nodes of an element
//                                number of elements
//                                per element, its nodes, as node numbers of pm
//                                per element, its zone
//   and for olf                  per element, the number of the adjacent wall, or 0
//                                logical: as in the coordinates file. If so,
//                                per element, the side of the wall that it is on, 1 or 2
//   and for frac                 per element the element of pm on one side of it, then per element
//                                the element of pm on the other side, in one record
//                                per element, its aperture, reals of 64 bits
//
// <prefix>o.<stem>_<tag>.<index> header, 80 characters
//                                the values
//
// <prefix>o.<stem>_<tag>.<species>.<index>   the same for one species
// hmc/<prefix>o.hmc_<tag>.f_<name>.<index>   the same for one origin of water
//
// The header of a result file begins with the time stamp, a blank and a free text, 55 characters
// in all. In the newer generation "#!TVN", "001" and "LE" follow, then the type ("R08", "R04",
// "I04"), the number of components in two digits and of values in ten. The older generation leaves
// these 25 characters blank.
//
// Values of one component are one record. Of several components, the newer generation writes one
// record per component, the older generation one record per node or element.
namespace problem_files {

struct Problem {
    std::string directory;
    std::string prefix;
    std::uint32_t maximumSubRecordBytes = 0; // longer records are split
    std::int32_t suffixDigits = 0;
    std::int32_t unitSystem = 0;
    bool olderGeneration = false;
    bool walls = false;
    std::vector<problem_species::Species> species;
    std::optional<std::vector<problem_species::Species>> origins; // of water
    problem_mesh::Mesh mesh;
    std::vector<problem_domains::Domain> domains;
    std::int64_t files = 0; // written so far
    std::uint64_t bytes = 0;
};

// Length units of the problem's files in a metre: 1 or 100.
double perMetre(const Problem& problem);

// Writes a text file of this name into the directory of the problem.
// All writers end the program with status 1 if a file cannot be written.
void writeText(Problem& problem, const std::string& name, const std::string& text);

// Writes the prefix and description files, and the lists of species and of origins of water.
void writeDescription(Problem& problem);

// Writes the coordinates and elements files of all domains.
void writeMesh(Problem& problem);

// Writes the files of one variable at one output time: one per domain of the problem that has the
// variable, and per species or origin of the variable. `index` counts output times from 1.
void writeResults(Problem& problem, const problem_variables::Variable& variable,
                  const problem_weather::Weather& weather, std::int32_t index);

} // namespace problem_files
