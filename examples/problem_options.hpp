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
    std::int32_t nx = 24; // cells along the valley
    std::int32_t ny = 16; // cells across the valley
    std::int32_t layers = 6;
    std::int32_t times = 6;
    std::int32_t step = 3600; // seconds between output times
    bool oneStorm = false;    // one storm washes solutes off a field, then no more rain
    bool prisms = false;
    problem_domains::TagSet domains = 0; // further domains than pm, which always exists
    problem_domains::TagSet sharing = 0; // domains that share the nodes of pm
    std::vector<problem_species::Species> species;
    std::optional<std::vector<problem_species::Species>> origins; // of water
    std::string variableWords = "default";
    std::vector<problem_variables::Variable> variables; // selected by the words
    bool olderGeneration = false;
    std::uint32_t maximumSubRecordBytes = 0; // longer records are split
    std::int32_t suffixDigits = 4;           // digits of the time index
    std::int32_t unitSystem = 0;
    bool walls = false;
    bool fullTensor = false;
    std::int32_t observations = 24; // field measurements per file
    bool observedTable = false;     // water table elevations instead of heads in the ground
    bool sitesAtNodes = false;      // all measurements are close to nodes
};

// Reads the command line. With --help, prints the help and ends the program with status 0. On a
// usage error, prints a message and ends it with status 2.
Options read(const std::vector<std::string>& arguments);

} // namespace problem_options
