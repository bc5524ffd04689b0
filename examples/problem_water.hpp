#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// The water in the ground, on the surface, and in wells, tiles and channels. Closed formulas
// replace a numerical solution. Rain raises the water table, most of all below the ridges, and the
// table recedes exponentially. The stream rises within hours. Heads decrease with depth below the
// ridges and increase with depth below the stream. Fields are in SI units, components of vectors x,
// y, z.
namespace problem_water {

using problem_domains::Place;
using problem_weather::Weather;

double waterTable(const Place& place, const Weather& weather); // elevation, m

// Depth of water on the ground, m. Where the surface is dry it is negative: head minus elevation.
double pondDepth(const Place& place, const Weather& weather);
double rainRate(const Place& place, const Weather& weather);         // m/s
double infiltrationRate(const Place& place, const Weather& weather); // m/s

// Heads, m
double pmHead(const Place&, const Weather&, int);
double dualHead(const Place&, const Weather&, int);
double surfaceHead(const Place&, const Weather&, int);
double fractureHead(const Place&, const Weather&, int);
double channelHead(const Place&, const Weather&, int);
double incisedHead(const Place&, const Weather&, int);
double wellHead(const Place&, const Weather&, int);
double tileHead(const Place&, const Weather&, int);
double environmentalHead(const Place&, const Weather&, int);
double maxDepth(const Place&, const Weather&, int); // highest depth of water since the start

// Parts of 1
double pmSaturation(const Place&, const Weather&, int);
double dualSaturation(const Place&, const Weather&, int);
double fractureSaturation(const Place&, const Weather&, int);
double waterContent(const Place&, const Weather&, int);
double iceSaturation(const Place&, const Weather&, int);

// m/s
double darcyFlux(const Place&, const Weather&, int component);
double pmVelocity(const Place&, const Weather&, int component);
double dualVelocity(const Place&, const Weather&, int component);
double fractureVelocity(const Place&, const Weather&, int component);
double surfaceVelocity(const Place&, const Weather&, int component);
double wellVelocity(const Place&, const Weather&, int component);
double tileVelocity(const Place&, const Weather&, int component);

double flowRate(const Place&, const Weather&, int);           // over the surface, m3/s
double friction(const Place&, const Weather&, int component); // of the surface, s m^-1/3
double newtonResidual(const Place&, const Weather&, int);     // m3/s

// Peclet numbers of the flow in pm at the place, for every domain.
double peclet(const Place&, const Weather&, int component);
double diffusionPeclet(const Place&, const Weather&, int component);

} // namespace problem_water
