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
double ground_concentration(const Place&, const Weather&, int);
double macropore_concentration(const Place&, const Weather&, int);
double fracture_concentration(const Place&, const Weather&, int);
double surface_concentration(const Place&, const Weather&, int);
double drain_concentration(const Place&, const Weather&, int); // of wells and tiles
double immobile_concentration(const Place&, const Weather&, int);

double attached_particles(const Place&, const Weather&, int); // to the grains, 1/kg
double sorbed_mass(const Place&, const Weather&, int);        // kg
double redox_capacity(const Place&, const Weather&, int);     // kg/m3

// Fluxes between a domain and pm: of olf, and of the others
double surface_advection(const Place&, const Weather&, int);
double surface_dispersion(const Place&, const Weather&, int);
double surface_exchange(const Place&, const Weather&, int); // the sum of the two
double line_advection(const Place&, const Weather&, int);
double line_dispersion(const Place&, const Weather&, int);
double line_exchange(const Place&, const Weather&, int);
double macropore_advection(const Place&, const Weather&, int);
double macropore_dispersion(const Place&, const Weather&, int);

// The waters of different origin: the part of the one that the place names, the part of the water
// that has come since the start, and what the parts of all lack to 1.
double origin_fraction(const Place&, const Weather&, int);
double mixing_ratio(const Place&, const Weather&, int);
double mixing_error(const Place&, const Weather&, int);

} // namespace problem_transport
