#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// What passes through the land surface and between the domains. Fields in SI units: rates in m/s,
// depths and elevations in m.
namespace problem_surface {

using problem_domains::Place;
using problem_weather::Weather;

double rain(const Place&, const Weather&, int);
double specified_flux(const Place&, const Weather&, int);
double potential_et(const Place&, const Weather&, int);

// Evaporation and transpiration, from the surface and, summed over depth, from the ground.
double surface_evaporation(const Place&, const Weather&, int);
double ground_evaporation(const Place&, const Weather&, int);
double ground_transpiration(const Place&, const Weather&, int);
double actual_et(const Place&, const Weather&, int);

// The part of a node of the ground.
double node_evaporation(const Place&, const Weather&, int);
double node_transpiration(const Place&, const Weather&, int);

double snow_depth(const Place&, const Weather&, int);
double snow_melt(const Place&, const Weather&, int);
double liquid_precipitation(const Place&, const Weather&, int);
double solid_precipitation(const Place&, const Weather&, int);
double snow_elevation(const Place&, const Weather&, int); // of the snow's surface

// Exchange of water between a domain and pm, positive out of the ground; dual_exchange in m3/s.
double surface_exchange(const Place&, const Weather&, int);
double line_exchange(const Place&, const Weather&, int);
double dual_exchange(const Place&, const Weather&, int);
double macropore_exchange(const Place&, const Weather&, int);

} // namespace problem_surface
