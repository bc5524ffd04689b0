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

// The files of a problem, record by record. The layout of a record is told in record_file.hpp.
//
// <prefix>o.gen                  version, 80 characters
//                                number of title lines
//                                the lines, 60 characters each, in one record
//                                handle of the unit system
//
// <prefix>o.species              number of mobile species
//                                number of immobile ones
//                                per species, mobile ones first, its name, 50 characters
//                                per mobile species, logical: it is heat
//                                per mobile species, logical: it is made of particles
//
// <prefix>o.hmc                  three settings of the simulator
//                                logical, a further one
//                                number of origins of water
//                                two further settings
//                                per origin, its name, 80 characters, and two settings
//
// <prefix>o.coordinatesPm       number of nodes
//                                x, y, z of each node, reals of 64 bits
//                                cells along x, cells along y, number of sheets
//
// <prefix>o.coordinates_<tag>    number of nodes
//                                coupling scheme, 1 for a domain with nodes of its own, else 0
//                                per node, its node of pm
//                                per node of pm, the global number of the domain's node, or 0
//   and for olf                  logical: a cutoff wall doubles nodes. If so,
//                                number of walls
//                                number of sides of a wall
//                                per node, logical: it is doubled
//                                per side, per node: the global number to take on that side, or 0
//                                per node, the number of its wall, or 0
//
// <prefix>o.elements_<tag>       nodes of an element
//                                number of elements
//                                per element, its nodes by their numbers in pm
//                                per element, its zone
//   and for olf                  per element, the number of the wall beside it, or 0
//                                logical: as in the coordinates file. If so,
//                                per element, the side of the wall that it lies on, 1 or 2
//   and for frac                 per element the element of pm on one side of it, then per element
//                                the one on the other side, in one record
//                                per element, its aperture, reals of 64 bits
//
// <prefix>o.<stem>_<tag>.<index> header, 80 characters
//                                the values
//
// <prefix>o.<stem>_<tag>.<species>.<index>   the same, of one species
// hmc/<prefix>o.hmc_<tag>.f_<name>.<index>   the same, of one origin of water
//
// The header of a result file begins with the time stamp, a blank and a free text, 55 characters
// in all. In the newer generation "#!TVN", "001" and "LE" follow, then the type ("R08", "R04",
// "I04"), the number of components in two digits and of values in ten. The older generation leaves
// these 25 characters blank.
//
// The values of one component are one record. Of more components, the newer generation has one
// record for each, the older one record for each node or element.
namespace problem_files {

struct Problem {
    std::string directory;
    std::string prefix;
    std::uint32_t pieceLimit = 0; // longest piece of a record, bytes
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

// Length unit of the problem's files.
double perMetre(const Problem& problem);

// A text file of this name in the directory of the problem.
void writeText(Problem& problem, const std::string& name, const std::string& text);

// These, like `writeText`, end the program with status 1 when a file cannot be written.
void writeDescription(Problem& problem);
void writeMesh(Problem& problem);

// Writes the files of one variable at one output time, one for each of its domains that the problem
// has, and for each species that it is about. `index` counts output times from 1.
void writeResults(Problem& problem, const problem_variables::Variable& variable,
                  const problem_weather::Weather& weather, std::int32_t index);

} // namespace problem_files
