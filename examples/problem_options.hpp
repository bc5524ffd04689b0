#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "examples/problem_domains.hpp"
#include "examples/problem_species.hpp"
#include "examples/problem_variables.hpp"

namespace problem_options {

struct Options {
    std::string directory;
    std::string prefix = "catchment";
    std::int32_t nx = 24; // cells along the valley, and across it
    std::int32_t ny = 16;
    std::int32_t layers = 6;
    std::int32_t times = 6;
    std::int32_t step = 3600; // seconds between output times
    bool oneStorm = false;    // which washes the solutes off a field
    bool prisms = false;
    problem_domains::TagSet domains = 0; // pm is there in any case
    problem_domains::TagSet sharing = 0; // domains that share the nodes of pm
    std::vector<problem_species::Species> species;
    std::optional<std::vector<problem_species::Species>> origins; // of water
    std::string variableWords = "default";
    std::vector<problem_variables::Variable> variables; // what the words stand for
    bool olderGeneration = false;
    std::uint32_t pieceLimit = 0; // longest piece of a record, bytes
    std::int32_t suffixDigits = 4;
    std::int32_t unitSystem = 0;
    bool walls = false;
    bool fullTensor = false;
    std::int32_t observations = 24; // field measurements in each of their files
    bool observedTable = false;     // of the water table, not of heads in the ground
    bool sitesAtNodes = false;      // all measurements are close to nodes
};

// Reads the command line. Prints the help and ends with status 0 when it is asked for; ends with
// status 2 and a message when the command line is wrong.
Options read(const std::vector<std::string>& arguments);

} // namespace problem_options
