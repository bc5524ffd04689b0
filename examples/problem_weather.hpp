#pragma once

// What the catchment as a whole does in time: storms, and the stores of water that they fill and
// that drain at a rate in proportion to what they hold. A store thus falls exponentially between
// storms. Everything in SI units.
namespace problem_weather {

struct Weather {
    double time = 0;        // seconds since the start of the simulation
    double rain = 0;        // mean intensity at this time, m/s
    double sun = 0;         // 0 at night, 1 at noon
    double air = 0;         // temperature in the valley, K
    double melted = 0;      // snow that has become water since the start, m
    double washed = 0.0027; // water that has run off over the land since it was surveyed, m
    double overland = 0;    // stores in metres of water: gone within hours,
    double soil = 0.006;    //   within half a day,
    double valley = 0.0113; //   within a day,
    double ridge = 0.0217;  //   within days
    double wetness = 0;     // of the topsoil, 0 to 1
    double meltRate = 0;    // m/s
    double mostRain = 0;    // highest values since the start
    double mostOverland = 0;
    double mostValley = 0;
    bool oneStorm = false; // the storm of `oneStormOnset`, and no other
};

constexpr double oneStormOnset = 3900; // seconds

// The state at the start, before the first storm.
Weather start(bool oneStorm = false);

// Moves the state on to a later time. The steps in between are short and always the same, so the
// state at a time hardly depends on how often it is asked for, and not at all for whole minutes.
void advance(Weather& weather, double time);

} // namespace problem_weather
