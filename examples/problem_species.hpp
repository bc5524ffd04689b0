#pragma once

#include <optional>
#include <string>
#include <vector>

// What the water carries: the species of the transport, and the waters of different origin whose
// parts in the mixture the simulator follows.
namespace problem_species {

struct Species {
    std::string name;
    bool mobile = true;
    bool heat = false;      // its concentration is a temperature in degrees Celsius
    bool particles = false; // its concentration is a number per volume, not a mass
    int number = 0;         // its place in the list, from 0
    int count = 0;          // length of the list
};

struct Reading {
    std::vector<Species> species; // mobile ones first, as in the file of species
    std::optional<std::string> fault;
};

// Reads names separated by commas, each followed by what the species is: "Heat:heat",
// "Virus:particles", "Calcite:immobile", both words of the first two if need be. A number in place
// of a name means so many species, called "Solute 1" and so on.
Reading read(const std::string& list);

// The first `count` origins of water.
std::vector<Species> origins(int count);

} // namespace problem_species
