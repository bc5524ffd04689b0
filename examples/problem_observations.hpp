#pragma once

#include <cstdint>

#include "examples/problem_files.hpp"
#include "examples/problem_weather.hpp"

// Field measurements in the catchment, as text. The first line is their number, each further line
// one measurement:
//
// <prefix>.observed_heads      x, y, z and head in the ground, or x, y and water table elevation
// <prefix>.observed_heads_olf  x, y and depth of water on the surface
// <prefix>.observed_d2gwt      x, y and depth of the water table below the surface
namespace problem_observations {

struct Kind {
    std::int32_t count = 0;  // measurements of each file
    bool waterTable = false; // elevations of the water table instead of heads
    bool atNodes = false;    // all sites are near nodes, those of water depths along the stream
};

// Writes the files for the time of `weather`. Measurements have errors of some centimetres. Unless
// sites are at nodes, some are outside the mesh: above the ground, next to the catchment or
// kilometres away. Water depths are written only if the problem has olf.
void write(problem_files::Problem& problem, const problem_weather::Weather& weather,
           const Kind& kind);

} // namespace problem_observations
