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

// One component, counted from 0, of the value at a place and time, in SI units.
using Field = double (*)(const problem_domains::Place&, const problem_weather::Weather&, int);

struct Variable {
    const char* stem; // of the file name; with a full stop at its end no domain follows
    problem_domains::TagSet domains; // that have the file
    bool usual;                      // written by default
    Type type;
    Location location;
    int components;
    double length_power; // of the unit, to convert from SI
    double time_power;
    Field field;
    const char* meaning; // goes into the header of the file, behind the time stamp
    When when = When::always;
};

struct Selection {
    std::vector<Variable> variables;
    std::optional<std::string> unknown; // the first word that is neither a set nor a stem
};

// The rows that `words` asks for: "default", "all" and stems, separated by commas, in any case of
// letters. With `full_tensor`, the conductivity of elements has six components and not three.
Selection select(const std::string& words, bool full_tensor);

// The names of all stems, each once, in the order of the table.
std::vector<std::string> stems();

} // namespace problem_variables
