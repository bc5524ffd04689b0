#pragma once

#include <cstdint>

#include "examples/problem_files.hpp"
#include "examples/problem_weather.hpp"

// Field measurements in the catchment, as text. First their number, then one to a line:
//
// <prefix>.observedHeads      x, y, z and head in the ground, or x, y and elevation of the water
//                              table: the same name serves both
// <prefix>.observedHeadsOlf  x, y and depth of water on the surface
// <prefix>.observedD2gwt      x, y and depth of the water table below the surface
namespace problem_observations {

struct Kind {
    std::int32_t count = 0;  // measurements of each file
    bool waterTable = false; // elevations of the water table in place of heads
    bool atNodes =
        false; // sites are inside the mesh and near nodes, for water depths in the stream
};

// Writes the files, with measurements of the time of `weather`, which err by some centimetres.
// Unless they are at nodes, a few sites are outside: above the ground, beside the catchment or
// kilometres away. The surface has a file only where the problem has one.
void write(problem_files::Problem& problem, const problem_weather::Weather& weather,
           const Kind& kind);

} // namespace problem_observations
