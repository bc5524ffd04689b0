#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// Transport of the species of the place. Closed formulas replace a numerical solution. The plume of
// a spill years ago moves with the flow. The temperature varies with the hour and the season; with
// depth, the amplitude decreases and the delay increases.
//
// Concentrations are in kg/m3, or in 1/m3 for particles. For heat they are temperatures in degrees
// Celsius. Fluxes are in kg/m2/s, in 1/m2/s for particles and in W/m2 for heat. A flux out of the
// ground is positive.
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

// Fluxes between pm and olf (surface) or another domain (line), and between a domain and dual
// (macropore)
double surfaceAdvection(const Place&, const Weather&, int);
double surfaceDispersion(const Place&, const Weather&, int);
double surfaceExchange(const Place&, const Weather&, int); // the sum of the two
double lineAdvection(const Place&, const Weather&, int);
double lineDispersion(const Place&, const Weather&, int);
double lineExchange(const Place&, const Weather&, int);
double macroporeAdvection(const Place&, const Weather&, int);
double macroporeDispersion(const Place&, const Weather&, int);

// Origins of water: the fraction of the place's origin, the fraction of water that entered after
// the start, and 1 minus the sum of the fractions of all origins.
double originFraction(const Place&, const Weather&, int);
double mixingRatio(const Place&, const Weather&, int);
double mixingError(const Place&, const Weather&, int);

} // namespace problem_transport
