#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// Fluxes through the land surface and between the domains. Fields in SI units: rates in m/s, depths
// and elevations in m.
namespace problem_surface {

using problem_domains::Place;
using problem_weather::Weather;

double rain(const Place&, const Weather&, int);
double specifiedFlux(const Place&, const Weather&, int);
double potentialEt(const Place&, const Weather&, int);

// Evaporation and transpiration from the surface, and from the ground as sums over depth.
double surfaceEvaporation(const Place&, const Weather&, int);
double groundEvaporation(const Place&, const Weather&, int);
double groundTranspiration(const Place&, const Weather&, int);
double actualEt(const Place&, const Weather&, int);

// Contributions of single nodes of pm to groundEvaporation and groundTranspiration.
double nodeEvaporation(const Place&, const Weather&, int);
double nodeTranspiration(const Place&, const Weather&, int);

double snowDepth(const Place&, const Weather&, int);
double snowMelt(const Place&, const Weather&, int);
double liquidPrecipitation(const Place&, const Weather&, int);
double solidPrecipitation(const Place&, const Weather&, int);
double snowElevation(const Place&, const Weather&, int); // of the snow's surface

// Exchange of water between a domain and pm, positive out of the ground; dualExchange in m3/s.
double surfaceExchange(const Place&, const Weather&, int);
double lineExchange(const Place&, const Weather&, int);
double dualExchange(const Place&, const Weather&, int);
double macroporeExchange(const Place&, const Weather&, int);

} // namespace problem_surface
