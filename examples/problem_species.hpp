#pragma once

#include <optional>
#include <string>
#include <vector>

// The species of the transport, and the origins of water for which the simulator computes the
// fractions of the mixture.
namespace problem_species {

struct Species {
    std::string name;
    bool mobile = true;
    bool heat = false;      // its concentration is a temperature in degrees Celsius
    bool particles = false; // its concentration is a number per volume, not a mass
    int number = 0;         // index in the list, from 0
    int count = 0;          // length of the list
};

struct Reading {
    std::vector<Species> species; // mobile ones first, as in the file of species
    std::optional<std::string> fault;
};

// Reads names separated by commas, each followed by the kinds of the species: "Heat:heat",
// "Virus:particles", "Calcite:immobile". A species can have several kinds, but an immobile one has
// no other. A number instead of a name gives that many species with the names "Solute 1" and so on.
Reading read(const std::string& list);

// The first `count` origins of water.
std::vector<Species> origins(int count);

} // namespace problem_species
