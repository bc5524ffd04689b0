#pragma once

#include <optional>
#include <string>
#include <vector>

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// The table of the result files that the program can write. A new variable is a new row.
namespace problem_variables {

enum class Type { real64, real32, int32 };
enum class Location { node, element };

// Output times that have the file.
enum class When { always, first, later };

// Variables with a file for each species of a kind, or for each origin of water. Their files lie in
// the folder "hmc" and not beside the others when they are about origins.
enum class Family { oneFile, species, mobile, heat, particles, origins, originSums };

// One component, counted from 0, of the value at a place and time, in SI units.
using Field = double (*)(const problem_domains::Place&, const problem_weather::Weather&, int);

struct Variable {
    const char* stem; // of the file name; with a full stop at its end no domain follows
    problem_domains::TagSet domains; // that have the file
    bool usual;                      // written by default
    Type type;
    Location location;
    int components;
    double lengthPower; // of the unit, to convert from SI
    double timePower;   //   of a solute where the unit depends on the species
    Field field;
    const char* meaning; // goes into the header of the file, behind the time stamp
    When when = When::always;
    Family family = Family::oneFile;
    const char* tail = ""; // of the file name, behind the species and ahead of the index
};

struct Selection {
    std::vector<Variable> variables;
    std::optional<std::string> unknown; // the first word that is neither a set nor a stem
    std::optional<std::string> lacking; // a stem asked for that needs species or origins of water
};

// What the problem has beside the flow of water, and the form of its tensors: the conductivity of
// elements has six components in full form and else three.
struct Given {
    bool fullTensor = false;
    bool species = false;
    bool origins = false;
};

// The rows that `words` asks for: "default", "all" and stems, separated by commas, in any case of
// letters. The two sets hold families only as far as the problem has what they are about.
Selection select(const std::string& words, const Given& given);

// Whether the variable belongs to the nodes of pm too. A domain that shares them has no such file.
bool isAtNodesOfPm(const Variable& variable);

// The names of all stems, each once, in the order of the table.
std::vector<std::string> stems();

} // namespace problem_variables
