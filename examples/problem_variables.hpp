#pragma once

#include <optional>
#include <string>
#include <vector>

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// The table of result files that the program can write. A new variable is a new row.
namespace problem_variables {

enum class Type { real64, real32, int32 };
enum class Location { node, element };

// Output times that have the file.
enum class When { always, first, later };

// The list for whose entries the variable has one file each: all species, those of a kind, or the
// origins of water. originSums has one file for all origins. Files of origins are in the folder
// "hmc".
enum class Family { oneFile, species, mobile, heat, particles, origins, originSums };

// Computes one component, counted from 0, of the value at a place and time, in SI units.
using Field = double (*)(const problem_domains::Place&, const problem_weather::Weather&, int);

struct Variable {
    const char* stem; // of the file name; if it ends with a full stop, no domain follows
    problem_domains::TagSet domains; // that have the file
    bool usual;                      // written by default
    Type type;
    Location location;
    int components;
    double lengthPower; // of the unit, to convert from SI
    double timePower;   //   of a solute where the unit depends on the species
    Field field;
    const char* meaning; // text after the time stamp in the header of the file
    When when = When::always;
    Family family = Family::oneFile;
    const char* tail = ""; // of the file name, between species and index
};

struct Selection {
    std::vector<Variable> variables;
    std::optional<std::string> unknown;     // the first word that is neither a set nor a stem
    std::optional<std::string> unavailable; // a requested stem that needs species or origins
};

// What the problem contains besides the flow of water. With a full tensor the conductivity of
// elements has six components, otherwise three.
struct ProblemContents {
    bool fullTensor = false;
    bool species = false;
    bool origins = false;
};

// Selects the rows for `words`: "default", "all" and stems, separated by commas, in any case of
// letters. The two sets omit families of species or origins that the problem does not have.
Selection select(const std::string& words, const ProblemContents& contents);

// True if pm has this variable at its nodes too. A domain that shares them then has no file of it.
bool isAtNodesOfPm(const Variable& variable);

// Returns the words for all variables, each once, in the order of the table.
std::vector<std::string> stems();

} // namespace problem_variables
