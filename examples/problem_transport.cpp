#include "examples/problem_transport.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "examples/problem_ground.hpp"
#include "examples/problem_surface.hpp"
#include "examples/problem_water.hpp"

namespace problem_transport {

using problem_ground::depthBelowGround;
using problem_ground::surfaceInfluence;
using problem_mesh::Column;
using problem_species::Species;

namespace {

constexpr double year = 365.25 * 86400;
constexpr double freezingPoint = 273.15;
constexpr double particlesPerKg = 3.71e9;
constexpr double heatOfWater = 4.183e6; // J/m3/K

// A number between low and high that depends on the species. Multiples of the golden ratio, modulo
// 1, are evenly distributed, so the numbers of successive species differ clearly.
double speciesParameter(const Species& species, double seed, double low, double high) {
    const double turn = seed + std::numbers::phi * species.number;
    return low + (high - low) * (turn - std::floor(turn));
}

// Concentration of the species as a fraction of its peak, at a distance from the spill. All lengths
// in metres.
double plume(const Species& species, double dx, double dy, double depth) {
    const double width = speciesParameter(species, 0.17, 130, 310);
    const double thickness = speciesParameter(species, 0.71, 7, 23);
    const double exponent =
        (dx * dx + dy * dy) / (width * width) + depth * depth / (thickness * thickness);
    return exponent < 30 ? std::exp(-exponent) : 0;
}

// The same for a plume that has moved with the flow since the spill, delayed by sorption. The water
// moves `speedFactor` times as fast as in the ground. The velocity is that before the first storm,
// because single storms hardly move a plume that is years old.
double plumeInFlow(const Place& place, const Weather& weather, double speedFactor) {
    static const Weather betweenStorms = problem_weather::start();
    const Species& species = *place.species;
    const double retardation = speciesParameter(species, 0.43, 1.1, 4.7);
    const double time =
        (weather.time + speciesParameter(species, 0.29, 0.7, 2.3) * year) / retardation;
    const auto travelled = [&](int component) {
        return speedFactor * time * problem_water::pmVelocity(place, betweenStorms, component);
    };
    const Column& column = *place.column;
    return plume(species, column.x - travelled(0) - speciesParameter(species, 0.37, 470, 1730),
                 column.y - travelled(1) - speciesParameter(species, 0.83, 310, 970),
                 depthBelowGround(place) + travelled(2));
}

// With one storm, solutes are washed from a field on the hill side to the stream. The plume slows
// down as the ground drains. The stream carries solutes that reach it to the outlet.
namespace wash_off {

constexpr double fieldX = 1500; // centre of the field, metres
constexpr double fieldY = 985;
constexpr double fieldWidth = 105;
constexpr double directionX = -0.454; // unit vector from the field to the stream
constexpr double directionY = -0.891;
constexpr double finalDistance = 760;    // metres from the field, after infinite time
constexpr double distanceToStream = 585; // metres
constexpr double decayTime = 6.3 * 3600; // seconds, of the plume's velocity
constexpr double streamSpeed = 0.43;     // m/s

// Distance of the plume's centre from the field, metres.
double travelled(double time, double speedFactor) {
    const double elapsed = std::max(0.0, speedFactor * (time - problem_weather::oneStormOnset));
    return finalDistance * (1 - std::exp(-elapsed / decayTime));
}

// Concentration as a fraction of the initial peak, `offset` metres from the centre of a plume that
// has travelled `distance` metres.
double partOfPeak(double distance, double offset) {
    const double width = fieldWidth + 0.07 * distance;
    const double part = offset / width;
    return fieldWidth * fieldWidth / (width * width) * std::exp(-std::min(part * part, 30.0));
}

double inGround(const Place& place, const Weather& weather, double speedFactor) {
    const Column& column = *place.column;
    const double distance = travelled(weather.time, speedFactor);
    const double dx = column.x - fieldX - directionX * distance;
    const double dy = column.y - fieldY - directionY * distance;
    const double depth = depthBelowGround(place) / 11.3;
    // The plume does not pass below the stream.
    const double northOfStream =
        1 / (1 + std::exp((problem_mesh::streamLine(column.x) - column.y) / 31.7));
    return northOfStream * partOfPeak(distance, std::hypot(dx, dy)) * std::exp(-depth * depth);
}

double inStream(const Place& place, const Weather& weather) {
    const double entryX = fieldX + directionX * distanceToStream;
    const double downstream = entryX - place.column->x;
    const double lag = std::max(0.0, downstream / streamSpeed);
    const double distance = travelled(weather.time - lag, 1);
    const double below = 1 / (1 + std::exp(-downstream / (0.4 * fieldWidth)));
    return below * place.column->stream * partOfPeak(distance, distance - distanceToStream);
}

} // namespace wash_off

// Concentration of a solute, kg/m3: a background, which increases with depth and decreases with
// time, and the plume. Minerals have no plume and dissolve.
double massConcentration(const Place& place, const Weather& weather, double speedFactor) {
    const Species& species = *place.species;
    const double aged = 1 + 0.0071 * depthBelowGround(place) - weather.time / (117 * year);
    const double everywhere =
        speciesParameter(species, 0.61, 0.0013, 0.0271) * place.column->variation * aged;
    if (!species.mobile) return 61 * everywhere;
    const double peak = speciesParameter(species, 0.11, 0.13, 1.91);
    const double part = weather.oneStorm ? wash_off::inGround(place, weather, speedFactor)
                                         : plumeInFlow(place, weather, speedFactor);
    return everywhere + peak * part;
}

double temperature(const Place& place, const Weather& weather) {
    const double damped = depthBelowGround(place) / 2.37;
    const double angle = 2 * std::numbers::pi * weather.time / year + 0.9;
    const double season = 6.83 * std::exp(-damped) * std::sin(angle - damped);
    return problem_ground::temperature(place, weather, 0) - freezingPoint + season;
}

// Concentration or temperature of the water in the ground. Particles are filtered out with depth.
double concentration(const Place& place, const Weather& weather, double speedFactor) {
    const Species& species = *place.species;
    if (species.heat) return temperature(place, weather);
    const double mass = massConcentration(place, weather, speedFactor);
    if (!species.particles) return mass;
    return particlesPerKg * mass * std::exp(-depthBelowGround(place) / 9.7);
}

// Advective flux with a water flux of 1 m/s.
double advectiveFlux(const Place& place, const Weather& weather) {
    const double amount = groundConcentration(place, weather, 0);
    return place.species->heat ? heatOfWater * amount : amount;
}

// Diffusive flux through a film of this thickness in metres, driven by the difference between
// mobile and immobile water. The factor is a thermal conductivity in W/m/K for heat, otherwise a
// diffusion coefficient in m2/s.
double diffusiveFlux(const Place& place, const Weather& weather, double film) {
    const double difference =
        groundConcentration(place, weather, 0) - immobileConcentration(place, weather, 0);
    return (place.species->heat ? 0.61 : 1.31e-9) * difference / film;
}

} // namespace

double groundConcentration(const Place& place, const Weather& weather, int) {
    const double value = concentration(place, weather, 1);
    if (place.species->heat) return value;
    return value * (1 - 0.23 * weather.wetness * surfaceInfluence(place, 2.7));
}

double macroporeConcentration(const Place& place, const Weather& weather, int) {
    const double value = concentration(place, weather, 2.9);
    if (place.species->heat) return value + 0.31 * surfaceInfluence(place, 4.3);
    return value * (1 - 0.71 * weather.wetness * surfaceInfluence(place, 11.3));
}

double fractureConcentration(const Place& place, const Weather& weather, int) {
    return concentration(place, weather, 7.3);
}

// Rain dilutes solutes and detaches particles. Shallow water is nearly as warm as the air.
double surfaceConcentration(const Place& place, const Weather& weather, int) {
    const double below = concentration(place, weather, 1);
    if (place.species->heat) return 0.37 * below + 0.63 * (weather.air - freezingPoint);
    double seeping = below * (0.09 + 0.31 * place.column->stream);
    if (weather.oneStorm) {
        const double peak = speciesParameter(*place.species, 0.11, 0.13, 1.91);
        seeping += (place.species->particles ? particlesPerKg : 1) * 0.23 * peak *
                   wash_off::inStream(place, weather);
    }
    const double storm = 61 * weather.overland;
    return place.species->particles ? seeping * (1 + 3.1 * storm) : seeping / (1 + storm);
}

double drainConcentration(const Place& place, const Weather& weather, int) {
    return 0.83 * groundConcentration(place, weather, 0) +
           0.17 * surfaceConcentration(place, weather, 0);
}

// Concentration in the immobile water. It follows that of the mobile water with a delay.
double immobileConcentration(const Place& place, const Weather& weather, int) {
    const double value = concentration(place, weather, 0.47);
    return place.species->heat ? value - 0.0173 * weather.wetness : 0.57 * value;
}

double attachedParticles(const Place& place, const Weather& weather, int) {
    return 3.7e-4 * groundConcentration(place, weather, 0) / place.column->variation;
}

double sorbedMass(const Place& place, const Weather& weather, int) {
    const double grains = 2650 * (1 - problem_ground::porosity(place, weather, 0));
    return 2.3e-5 * grains * massConcentration(place, weather, 0.47) * place.cellLength;
}

double redoxCapacity(const Place& place, const Weather& weather, int) {
    const double depth = depthBelowGround(place);
    const double left = 1 - 0.37 * plumeInFlow(place, weather, 1);
    return left * (0.0117 + 0.231 * (1 - std::exp(-depth / 8.3))) * place.column->variation;
}

double surfaceAdvection(const Place& place, const Weather& weather, int) {
    return problem_surface::surfaceExchange(place, weather, 0) * advectiveFlux(place, weather);
}

double surfaceDispersion(const Place& place, const Weather& weather, int) {
    return diffusiveFlux(place, weather, 0.0131 * place.column->variation);
}

double surfaceExchange(const Place& place, const Weather& weather, int) {
    return surfaceAdvection(place, weather, 0) + surfaceDispersion(place, weather, 0);
}

double lineAdvection(const Place& place, const Weather& weather, int) {
    return problem_surface::lineExchange(place, weather, 0) * advectiveFlux(place, weather);
}

double lineDispersion(const Place& place, const Weather& weather, int) {
    return diffusiveFlux(place, weather, 0.107 * place.column->variation);
}

double lineExchange(const Place& place, const Weather& weather, int) {
    return lineAdvection(place, weather, 0) + lineDispersion(place, weather, 0);
}

double macroporeAdvection(const Place& place, const Weather& weather, int) {
    return -problem_surface::macroporeExchange(place, weather, 0) * advectiveFlux(place, weather);
}

double macroporeDispersion(const Place& place, const Weather& weather, int) {
    return diffusiveFlux(place, weather, 0.0371 * place.column->variation);
}

// The first origin is recent rain. Each further origin has its maximum at a greater depth.
double originFraction(const Place& place, const Weather& weather, int) {
    const double depth = depthBelowGround(place);
    const double fresh = 1.7 * mixingRatio(place, weather, 0);
    const auto weight = [&](int number) {
        if (number == 0) return fresh;
        return (1 + 0.4 * place.column->hill * number) / (1 + std::abs(depth - 7.1 * number) / 5.3);
    };
    double all = 0;
    for (int number = 0; number < place.species->count; ++number) all += weight(number);
    return weight(place.species->number) / all * (1 - mixingError(place, weather, 0));
}

double mixingRatio(const Place& place, const Weather& weather, int) {
    const double open = surfaceInfluence(place, 9.1) * place.column->variation;
    return std::min(1.0, 0.0031 + 0.87 * open * weather.wetness + 3.1 * weather.ridge * open);
}

double mixingError(const Place& place, const Weather& weather, int) {
    const Column& column = *place.column;
    const double swing = std::sin(column.x / 31.7 + column.y / 43.1 + 0.00037 * weather.time);
    return 0.0021 + 0.0017 * swing * std::cos(place.z / 3.7);
}

} // namespace problem_transport
