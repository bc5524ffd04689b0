#include "examples/problem_water.hpp"

#include <algorithm>
#include <cmath>

#include "examples/problem_ground.hpp"

namespace problem_water {

using problem_ground::depth_below_ground;
using problem_ground::material;
using problem_ground::surface_influence;
using problem_mesh::Column;

namespace {

// How much of the slope of the land the water table follows: more when it stands high.
double table_slope(const Weather& weather) {
    return 0.55 + 3.1 * weather.ridge;
}

// Change of head per metre below the water table: positive where water rises to the stream.
double upward_gradient(const Column& column) {
    return 0.021 * (column.stream - column.hill);
}

double stream_stage(const Weather& weather) {
    return 0.113 + 9.7 * weather.overland + 4.1 * weather.valley;
}

double pressure_head(const Place& place, const Weather& weather) {
    const double above_table = place.z - water_table(place, weather);
    if (above_table <= 0) return -above_table * (1 + upward_gradient(*place.column));
    // Suction levels off high above the water table, where roots and drainage set it, and rain
    // takes half of it from the topsoil.
    const double suction = above_table / (1 + above_table / 4.7);
    return -suction * (1 - 0.53 * weather.wetness * surface_influence(place, 3.9));
}

double saturation_at(double pressure, double retention, double residual) {
    if (pressure >= 0) return 1;
    const double part = retention * pressure;
    return residual + (1 - residual) / std::sqrt(1 + part * part);
}

double along_slope(const Column& column, double speed, int component) {
    const double slope = std::hypot(column.slope_x, column.slope_y);
    const double x = -column.slope_x / slope;
    const double y = -column.slope_y / slope;
    if (component == 0) return speed * x;
    if (component == 1) return speed * y;
    return speed * (x * column.slope_x + y * column.slope_y);
}

double manning(const Column& column) {
    return 0.037 + 0.151 * (1 - column.stream);
}

} // namespace

double water_table(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double hill = column.hill;
    const double rest = 0.43 + 3.17 * hill + 8.61 * hill * hill;
    const double rise = (9.3 * (1 - hill) * weather.valley + 12.7 * hill * weather.ridge);
    const double depth = std::max(0.047, rest - rise * column.variation);
    const double below_stream = column.stream * (depth + pond_depth(place, weather));
    return column.ground - depth + below_stream;
}

double rain_here(const Place& place, const Weather& weather) {
    return weather.rain * (0.83 + 0.31 * place.column->hill);
}

double infiltration_here(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double capacity = 2.7e-6 * (0.75 + 0.5 * column.hill) * column.variation;
    return std::min(rain_here(place, weather), capacity) * (1 - column.stream);
}

double pond_depth(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double off_stream = 1 - column.stream;
    const double excess = rain_here(place, weather) - infiltration_here(place, weather);
    return column.stream * stream_stage(weather) * column.variation + 1130 * off_stream * excess -
           0.00047 * off_stream * (1 + column.hill);
}

double pm_head(const Place& place, const Weather& weather, int) {
    return place.z + pressure_head(place, weather);
}

double dual_head(const Place& place, const Weather& weather, int) {
    const double pressure = pressure_head(place, weather);
    return place.z + (pressure < 0 ? 0.37 : 0.997) * pressure;
}

double surface_head(const Place& place, const Weather& weather, int) {
    const double banked_up = place.beyond_wall ? 0.0137 * place.column->variation : 0;
    return place.column->ground + pond_depth(place, weather) + banked_up;
}

double fracture_head(const Place& place, const Weather& weather, int) {
    const double pressure = pressure_head(place, weather);
    return place.z + (pressure < 0 ? 0.81 : 1.0063) * pressure;
}

double channel_head(const Place& place, const Weather& weather, int) {
    return place.column->ground + 0.031 + stream_stage(weather) * place.column->variation;
}

double incised_head(const Place& place, const Weather& weather, int) {
    return channel_head(place, weather, 0) - 0.627 * place.column->variation;
}

double well_head(const Place& place, const Weather& weather, int) {
    const double table = water_table(place, weather);
    return table - 1.37 + 6.1 * weather.ridge - 0.0021 * (table - place.z);
}

double tile_head(const Place& place, const Weather& weather, int) {
    return place.z + 0.041 + 2.23 * weather.valley * place.column->variation;
}

double environmental_head(const Place& place, const Weather& weather, int) {
    const double head = pm_head(place, weather, 0);
    return head + 0.00043 * (head - place.z);
}

double max_depth(const Place& place, const Weather& weather, int) {
    Weather worst = weather;
    worst.rain = weather.most_rain;
    worst.overland = weather.most_overland;
    worst.valley = weather.most_valley;
    return std::max(0.0, pond_depth(place, worst));
}

double pm_saturation(const Place& place, const Weather& weather, int) {
    const problem_ground::Material& ground = material(place);
    return saturation_at(pressure_head(place, weather), ground.retention, ground.residual);
}

double dual_saturation(const Place& place, const Weather& weather, int) {
    return saturation_at(dual_head(place, weather, 0) - place.z, 11.3, 0.017);
}

double fracture_saturation(const Place& place, const Weather& weather, int) {
    return saturation_at(fracture_head(place, weather, 0) - place.z, 7.9, 0.031);
}

double water_content(const Place& place, const Weather& weather, int) {
    return problem_ground::porosity(place, weather, 0) * pm_saturation(place, weather, 0);
}

double ice_saturation(const Place& place, const Weather& weather, int) {
    return problem_ground::ice_content(place, weather, 0) * pm_saturation(place, weather, 0);
}

double darcy_flux(const Place& place, const Weather& weather, int component) {
    const Column& column = *place.column;
    const double saturation = pm_saturation(place, weather, 0);
    const double conductivity = problem_ground::conductivity(place, weather, component) *
                                saturation * saturation * saturation;
    if (component == 0) return -conductivity * table_slope(weather) * column.slope_x;
    if (component == 1) return -conductivity * table_slope(weather) * column.slope_y;
    const double seeping = infiltration_here(place, weather) * surface_influence(place, 6.1);
    return conductivity * upward_gradient(column) - seeping;
}

double pm_velocity(const Place& place, const Weather& weather, int component) {
    return darcy_flux(place, weather, component) / water_content(place, weather, 0);
}

double dual_velocity(const Place& place, const Weather& weather, int component) {
    return 37.1 * dual_saturation(place, weather, 0) * pm_velocity(place, weather, component);
}

// The plane of the fracture stands across the valley: no flow through it.
double fracture_velocity(const Place& place, const Weather& weather, int component) {
    if (component == 0) return 0;
    return 213.7 * pm_velocity(place, weather, component);
}

double surface_velocity(const Place& place, const Weather& weather, int component) {
    const Column& column = *place.column;
    const double depth = std::max(0.0, pond_depth(place, weather));
    const double slope = std::hypot(column.slope_x, column.slope_y);
    const double cube_root = std::cbrt(depth);
    const double speed = cube_root * cube_root * std::sqrt(slope) / manning(column);
    return along_slope(column, speed, component);
}

double well_velocity(const Place& place, const Weather& weather, int component) {
    if (component != 2) return 0;
    return (1.9e-3 + 0.21 * weather.ridge) * (1 - depth_below_ground(place) / 71.3);
}

double tile_velocity(const Place& place, const Weather& weather, int component) {
    return along_slope(*place.column, 0.0137 + 3.7 * weather.valley, component);
}

double flow_rate(const Place& place, const Weather& weather, int) {
    const double x = surface_velocity(place, weather, 0);
    const double y = surface_velocity(place, weather, 1);
    const double width = 1.93 + 0.021 * place.cell_length;
    return std::hypot(x, y) * std::max(0.0, pond_depth(place, weather)) * width;
}

double friction(const Place& place, const Weather&, int component) {
    return manning(*place.column) * (component == 0 ? 1 : 1.08) * place.column->variation;
}

double newton_residual(const Place& place, const Weather& weather, int) {
    const Column& column = *place.column;
    const double swing =
        std::sin(column.x / 7.1 + 0.0011 * weather.time) * std::cos(column.y / 5.3);
    return 3.1e-9 * swing * (0.2 + weather.wetness) * std::cos(place.z / 1.7);
}

double peclet(const Place& place, const Weather& weather, int component) {
    const double x = pm_velocity(place, weather, 0);
    const double y = pm_velocity(place, weather, 1);
    const double z = pm_velocity(place, weather, 2);
    const double speed = std::hypot(x, y, z);
    const double own = component == 0 ? x : component == 1 ? y : z;
    return std::abs(own) * place.cell_length / (speed * 11.3 + 1.3e-9);
}

double diffusion_peclet(const Place& place, const Weather& weather, int component) {
    return std::abs(pm_velocity(place, weather, component)) * place.cell_length / 1.31e-9;
}

} // namespace problem_water
