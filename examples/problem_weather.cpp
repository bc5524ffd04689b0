#include "examples/problem_weather.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace problem_weather {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double day = 86400;
constexpr double step = 60;

struct Storm {
    double onset = 0;  // seconds
    double length = 0; // seconds
    double peak = 0;   // m/s
};

// One storm in each 17 hours, with varying onset, duration and intensity.
Storm stormAt(double time) {
    constexpr double period = 61200;
    const double number = std::floor(time / period);
    return {.onset = number * period + 4300 + 2900 * std::sin(1.9 * number + 0.3),
            .length = 7900 + 2300 * std::sin(2.7 * number),
            .peak = 4.3e-6 * (1 + 0.45 * std::sin(1.3 * number + 1.1))};
}

double rainAt(double time, bool oneStorm) {
    const Storm storm = oneStorm ? Storm{oneStormOnset, 26100, 3.9e-6} : stormAt(time);
    const double part = (time - storm.onset) / storm.length;
    if (part <= 0 || part >= 1) return 0;
    return storm.peak * std::pow(std::sin(pi * part), 2);
}

double fill(double store, double inflow, double seconds, double residence) {
    return store * std::exp(-seconds / residence) + inflow * seconds;
}

void updateDerivedValues(Weather& weather) {
    const double hourAngle = 2 * pi * (weather.time / day - 0.25);
    weather.rain = rainAt(weather.time, weather.oneStorm);
    weather.sun = std::max(0.0, std::sin(hourAngle));
    weather.air = 278.43 + 3.17 * std::sin(hourAngle - 0.6) + 0.43 * std::sin(0.37 * hourAngle);
    weather.meltRate = 2.9e-8 * std::max(0.0, weather.air - 273.15);
    weather.wetness = weather.soil / (weather.soil + 0.0061);
    weather.maximumRain = std::max(weather.maximumRain, weather.rain);
    weather.maximumOverland = std::max(weather.maximumOverland, weather.overland);
    weather.maximumValley = std::max(weather.maximumValley, weather.valley);
}

void advanceBy(Weather& weather, double seconds) {
    const double rain = rainAt(weather.time + 0.5 * seconds, weather.oneStorm);
    const double held = weather.overland + rain * seconds;
    weather.overland = fill(weather.overland, rain, seconds, 1.6 * 3600);
    weather.runoff += held - weather.overland;
    weather.soil = fill(weather.soil, rain, seconds, 13.3 * 3600);
    weather.valley = fill(weather.valley, 0.74 * rain, seconds, 0.9 * day);
    weather.ridge = fill(weather.ridge, 0.58 * rain, seconds, 3.7 * day);
    weather.melted += weather.meltRate * seconds;
    weather.time += seconds;
    updateDerivedValues(weather);
}

} // namespace

Weather start(bool oneStorm) {
    Weather weather;
    weather.oneStorm = oneStorm;
    updateDerivedValues(weather);
    return weather;
}

void advance(Weather& weather, double time) {
    while (time - weather.time >= step) advanceBy(weather, step);
    if (time > weather.time) advanceBy(weather, time - weather.time);
}

} // namespace problem_weather
