#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// What the water carries, for the species that the place names: closed formulas in place of a
// solution. A plume has spread from a spill years ago and goes on with the flow; heat follows the
// course of the day and of the year, ever later and weaker with depth.
//
// A concentration is in kg/m3, 1/m3 for particles, and a temperature in degrees Celsius for heat.
// A flux is in kg/m2/s, 1/m2/s for particles, and W/m2 for heat; positive out of the ground.
namespace problem_transport {

using problem_domains::Place;
using problem_weather::Weather;

// Concentrations
double groundConcentration(const Place&, const Weather&, int);
double macroporeConcentration(const Place&, const Weather&, int);
double fractureConcentration(const Place&, const Weather&, int);
double surfaceConcentration(const Place&, const Weather&, int);
double drainConcentration(const Place&, const Weather&, int); // of wells and tiles
double immobileConcentration(const Place&, const Weather&, int);

double attachedParticles(const Place&, const Weather&, int); // to the grains, 1/kg
double sorbedMass(const Place&, const Weather&, int);        // kg
double redoxCapacity(const Place&, const Weather&, int);     // kg/m3

// Fluxes between a domain and pm: of olf, and of the others
double surfaceAdvection(const Place&, const Weather&, int);
double surfaceDispersion(const Place&, const Weather&, int);
double surfaceExchange(const Place&, const Weather&, int); // the sum of the two
double lineAdvection(const Place&, const Weather&, int);
double lineDispersion(const Place&, const Weather&, int);
double lineExchange(const Place&, const Weather&, int);
double macroporeAdvection(const Place&, const Weather&, int);
double macroporeDispersion(const Place&, const Weather&, int);

// The waters of different origin: the part of the one that the place names, the part of the water
// that has come since the start, and what the parts of all lack to 1.
double originFraction(const Place&, const Weather&, int);
double mixingRatio(const Place&, const Weather&, int);
double mixingError(const Place&, const Weather&, int);

} // namespace problem_transport
