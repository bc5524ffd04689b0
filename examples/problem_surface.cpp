#include "examples/problem_surface.hpp"

#include <algorithm>
#include <cmath>

#include "examples/problem_ground.hpp"
#include "examples/problem_water.hpp"

namespace problem_surface {

using problem_ground::surface_influence;
using problem_mesh::Column;

namespace {

// Share of the precipitation that falls as snow: more with height, less on a warm day.
double snow_part(const Place& place, const Weather& weather) {
    const double air = weather.air - 0.0063 * (place.column->ground - 212.37);
    return std::clamp(0.5 - 0.41 * (air - 274.35), 0.0, 1.0);
}

} // namespace

double rain(const Place& place, const Weather& weather, int) {
    return problem_water::rain_here(place, weather);
}

double specified_flux(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) - 0.11 * potential_et(place, weather, 0);
}

double potential_et(const Place& place, const Weather& weather, int) {
    const Column& column = *place.column;
    return (3.1e-9 + 6.7e-8 * weather.sun) * (1 - 0.23 * column.hill) * (1 + column.slope_y);
}

double surface_evaporation(const Place& place, const Weather& weather, int) {
    const double wet = problem_water::pond_depth(place, weather) > 0 ? 1 : 0.043;
    return 0.87 * wet * potential_et(place, weather, 0);
}

double ground_evaporation(const Place& place, const Weather& weather, int) {
    const double open = 0.31 * weather.wetness * (1 - place.column->stream);
    return open * potential_et(place, weather, 0);
}

double ground_transpiration(const Place& place, const Weather& weather, int) {
    const double cover = 0.42 * place.column->variation * (1 - place.column->stream);
    return cover * (0.6 + 0.4 * weather.wetness) * potential_et(place, weather, 0);
}

double actual_et(const Place& place, const Weather& weather, int) {
    return surface_evaporation(place, weather, 0) + ground_evaporation(place, weather, 0) +
           ground_transpiration(place, weather, 0);
}

double node_evaporation(const Place& place, const Weather& weather, int) {
    return surface_influence(place, 0.9) * ground_evaporation(place, weather, 0);
}

double node_transpiration(const Place& place, const Weather& weather, int) {
    return 0.37 * surface_influence(place, 3.4) * ground_transpiration(place, weather, 0);
}

double snow_depth(const Place& place, const Weather& weather, int) {
    const double fallen = 0.0047 * (place.column->ground - 221.9) * place.column->variation;
    return std::max(0.0, fallen - 3.3 * weather.melted);
}

double snow_melt(const Place& place, const Weather& weather, int) {
    if (snow_depth(place, weather, 0) <= 0) return 0;
    return weather.melt_rate * (1 + 0.4 * place.column->slope_y);
}

double liquid_precipitation(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) * (1 - snow_part(place, weather));
}

double solid_precipitation(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) * snow_part(place, weather);
}

double snow_elevation(const Place& place, const Weather& weather, int) {
    return place.column->ground + snow_depth(place, weather, 0);
}

double surface_exchange(const Place& place, const Weather& weather, int) {
    const double base_flow = 1.7e-7 * (1 + 37 * weather.valley) * place.column->stream;
    return base_flow - problem_water::infiltration_here(place, weather);
}

double line_exchange(const Place& place, const Weather& weather, int) {
    const double inflow = problem_ground::conductivity(place, weather, 0) * 0.0173;
    return inflow * (1 + 11.9 * weather.valley);
}

double dual_exchange(const Place& place, const Weather& weather, int) {
    const double area = place.cell_length * place.cell_length;
    return -area * macropore_exchange(place, weather, 0);
}

double macropore_exchange(const Place& place, const Weather& weather, int) {
    const double seeping = 0.19 * problem_water::infiltration_here(place, weather);
    const double resting = 2.3e-9 * weather.wetness * place.column->variation;
    return (seeping + resting) * surface_influence(place, 37.1);
}

} // namespace problem_surface
