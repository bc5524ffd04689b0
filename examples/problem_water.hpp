#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// The water in the ground, on it, and in the lines that drain it: closed formulas in place of a
// solution. Rain lifts the water table, most below the ridges, and it recedes exponentially; the
// stream rises within hours. The head falls with depth below the ridges and rises with depth below
// the stream. Fields in SI units; components of vectors are x, y, z.
namespace problem_water {

using problem_domains::Place;
using problem_weather::Weather;

double water_table(const Place& place, const Weather& weather); // elevation, m

// Depth of water on the ground; negative where the surface is dry: how far its head lies below it.
double pond_depth(const Place& place, const Weather& weather);
double rain_here(const Place& place, const Weather& weather);         // m/s
double infiltration_here(const Place& place, const Weather& weather); // m/s

// Heads, m
double pm_head(const Place&, const Weather&, int);
double dual_head(const Place&, const Weather&, int);
double surface_head(const Place&, const Weather&, int);
double fracture_head(const Place&, const Weather&, int);
double channel_head(const Place&, const Weather&, int);
double incised_head(const Place&, const Weather&, int);
double well_head(const Place&, const Weather&, int);
double tile_head(const Place&, const Weather&, int);
double environmental_head(const Place&, const Weather&, int);
double max_depth(const Place&, const Weather&, int); // highest depth of water since the start

// Parts of 1
double pm_saturation(const Place&, const Weather&, int);
double dual_saturation(const Place&, const Weather&, int);
double fracture_saturation(const Place&, const Weather&, int);
double water_content(const Place&, const Weather&, int);
double ice_saturation(const Place&, const Weather&, int);

// m/s
double darcy_flux(const Place&, const Weather&, int component);
double pm_velocity(const Place&, const Weather&, int component);
double dual_velocity(const Place&, const Weather&, int component);
double fracture_velocity(const Place&, const Weather&, int component);
double surface_velocity(const Place&, const Weather&, int component);
double well_velocity(const Place&, const Weather&, int component);
double tile_velocity(const Place&, const Weather&, int component);

double flow_rate(const Place&, const Weather&, int);          // over the surface, m3/s
double friction(const Place&, const Weather&, int component); // of the surface, s m^-1/3
double newton_residual(const Place&, const Weather&, int);    // m3/s

// Numbers of the flow in the ground at the place, whatever the domain.
double peclet(const Place&, const Weather&, int component);
double diffusion_peclet(const Place&, const Weather&, int component);

} // namespace problem_water
