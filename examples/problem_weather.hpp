#pragma once

// The state of the whole catchment in time: storms and stores of water. Storms fill the stores. A
// store drains at a rate proportional to its content, so it decreases exponentially between storms.
// All values in SI units.
namespace problem_weather {

struct Weather {
    double time = 0;        // seconds since the start of the simulation
    double rain = 0;        // mean intensity at this time, m/s
    double sun = 0;         // 0 at night, 1 at noon
    double air = 0;         // temperature in the valley, K
    double melted = 0;      // snowmelt since the start, m
    double runoff = 0.0027; // surface runoff since the survey of the elevations, m
    double overland = 0;    // stores in metres of water, residence time 1.6 hours,
    double soil = 0.006;    //   13.3 hours,
    double valley = 0.0113; //   0.9 days,
    double ridge = 0.0217;  //   3.7 days
    double wetness = 0;     // of the topsoil, 0 to 1
    double meltRate = 0;    // m/s
    double maximumRain = 0; // highest values since the start
    double maximumOverland = 0;
    double maximumValley = 0;
    bool oneStorm = false; // only the storm that begins at `oneStormOnset`
};

constexpr double oneStormOnset = 3900; // seconds

// The state at the start, before the first storm.
Weather start(bool oneStorm = false);

// Advances the state to a later time in steps of a minute and a last shorter one. If all times are
// whole minutes, the result does not depend on the times in between.
void advance(Weather& weather, double time);

} // namespace problem_weather
