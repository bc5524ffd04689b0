#include "examples/problem_water.hpp"

#include <algorithm>
#include <cmath>

#include "examples/problem_ground.hpp"

namespace problem_water {

using problem_ground::depthBelowGround;
using problem_ground::material;
using problem_ground::surfaceInfluence;
using problem_mesh::Column;

namespace {

// Slope of the water table as a fraction of the slope of the land. It is steeper when it is high.
double tableSlope(const Weather& weather) {
    return 0.55 + 3.1 * weather.ridge;
}

// Head increase per metre of depth below the water table. It is positive where water rises to the
// stream.
double upwardGradient(const Column& column) {
    return 0.021 * (column.stream - column.hill);
}

double streamStage(const Weather& weather) {
    return 0.113 + 9.7 * weather.overland + 4.1 * weather.valley;
}

double pressureHead(const Place& place, const Weather& weather) {
    const double aboveTable = place.z - waterTable(place, weather);
    if (aboveTable <= 0) return -aboveTable * (1 + upwardGradient(*place.column));
    // High above the water table, suction approaches a constant that roots and drainage determine.
    // Rain reduces it by about half in the topsoil.
    const double suction = aboveTable / (1 + aboveTable / 4.7);
    return -suction * (1 - 0.53 * weather.wetness * surfaceInfluence(place, 3.9));
}

double saturationAt(double pressure, double retention, double residual) {
    if (pressure >= 0) return 1;
    const double part = retention * pressure;
    return residual + (1 - residual) / std::sqrt(1 + part * part);
}

double alongSlope(const Column& column, double speed, int component) {
    const double slope = std::hypot(column.slopeX, column.slopeY);
    const double x = -column.slopeX / slope;
    const double y = -column.slopeY / slope;
    if (component == 0) return speed * x;
    if (component == 1) return speed * y;
    return speed * (x * column.slopeX + y * column.slopeY);
}

double manning(const Column& column) {
    return 0.037 + 0.151 * (1 - column.stream);
}

} // namespace

double waterTable(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double hill = column.hill;
    const double rest = 0.43 + 3.17 * hill + 8.61 * hill * hill;
    const double rise = (9.3 * (1 - hill) * weather.valley + 12.7 * hill * weather.ridge);
    const double depth = std::max(0.047, rest - rise * column.variation);
    const double belowStream = column.stream * (depth + pondDepth(place, weather));
    return column.ground - depth + belowStream;
}

double rainRate(const Place& place, const Weather& weather) {
    return weather.rain * (0.83 + 0.31 * place.column->hill);
}

double infiltrationRate(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double capacity = 2.7e-6 * (0.75 + 0.5 * column.hill) * column.variation;
    return std::min(rainRate(place, weather), capacity) * (1 - column.stream);
}

double pondDepth(const Place& place, const Weather& weather) {
    const Column& column = *place.column;
    const double offStream = 1 - column.stream;
    const double excess = rainRate(place, weather) - infiltrationRate(place, weather);
    return column.stream * streamStage(weather) * column.variation + 1130 * offStream * excess -
           0.00047 * offStream * (1 + column.hill);
}

double pmHead(const Place& place, const Weather& weather, int) {
    return place.z + pressureHead(place, weather);
}

double dualHead(const Place& place, const Weather& weather, int) {
    const double pressure = pressureHead(place, weather);
    return place.z + (pressure < 0 ? 0.37 : 0.997) * pressure;
}

double surfaceHead(const Place& place, const Weather& weather, int) {
    const double backwater = place.beyondWall ? 0.0137 * place.column->variation : 0;
    return place.column->ground + pondDepth(place, weather) + backwater;
}

double fractureHead(const Place& place, const Weather& weather, int) {
    const double pressure = pressureHead(place, weather);
    return place.z + (pressure < 0 ? 0.81 : 1.0063) * pressure;
}

double channelHead(const Place& place, const Weather& weather, int) {
    return place.column->ground + 0.031 + streamStage(weather) * place.column->variation;
}

double incisedHead(const Place& place, const Weather& weather, int) {
    return channelHead(place, weather, 0) - 0.627 * place.column->variation;
}

double wellHead(const Place& place, const Weather& weather, int) {
    const double table = waterTable(place, weather);
    return table - 1.37 + 6.1 * weather.ridge - 0.0021 * (table - place.z);
}

double tileHead(const Place& place, const Weather& weather, int) {
    return place.z + 0.041 + 2.23 * weather.valley * place.column->variation;
}

double environmentalHead(const Place& place, const Weather& weather, int) {
    const double head = pmHead(place, weather, 0);
    return head + 0.00043 * (head - place.z);
}

double maxDepth(const Place& place, const Weather& weather, int) {
    Weather worst = weather;
    worst.rain = weather.maximumRain;
    worst.overland = weather.maximumOverland;
    worst.valley = weather.maximumValley;
    return std::max(0.0, pondDepth(place, worst));
}

double pmSaturation(const Place& place, const Weather& weather, int) {
    const problem_ground::Material& ground = material(place);
    return saturationAt(pressureHead(place, weather), ground.retention, ground.residual);
}

double dualSaturation(const Place& place, const Weather& weather, int) {
    return saturationAt(dualHead(place, weather, 0) - place.z, 11.3, 0.017);
}

double fractureSaturation(const Place& place, const Weather& weather, int) {
    return saturationAt(fractureHead(place, weather, 0) - place.z, 7.9, 0.031);
}

double waterContent(const Place& place, const Weather& weather, int) {
    return problem_ground::porosity(place, weather, 0) * pmSaturation(place, weather, 0);
}

double iceSaturation(const Place& place, const Weather& weather, int) {
    return problem_ground::iceContent(place, weather, 0) * pmSaturation(place, weather, 0);
}

double darcyFlux(const Place& place, const Weather& weather, int component) {
    const Column& column = *place.column;
    const double saturation = pmSaturation(place, weather, 0);
    const double conductivity = problem_ground::conductivity(place, weather, component) *
                                saturation * saturation * saturation;
    if (component == 0) return -conductivity * tableSlope(weather) * column.slopeX;
    if (component == 1) return -conductivity * tableSlope(weather) * column.slopeY;
    const double seeping = infiltrationRate(place, weather) * surfaceInfluence(place, 6.1);
    return conductivity * upwardGradient(column) - seeping;
}

double pmVelocity(const Place& place, const Weather& weather, int component) {
    return darcyFlux(place, weather, component) / waterContent(place, weather, 0);
}

double dualVelocity(const Place& place, const Weather& weather, int component) {
    return 37.1 * dualSaturation(place, weather, 0) * pmVelocity(place, weather, component);
}

// The fracture is a plane across the valley. Its velocity has no component normal to the plane.
double fractureVelocity(const Place& place, const Weather& weather, int component) {
    if (component == 0) return 0;
    return 213.7 * pmVelocity(place, weather, component);
}

double surfaceVelocity(const Place& place, const Weather& weather, int component) {
    const Column& column = *place.column;
    const double depth = std::max(0.0, pondDepth(place, weather));
    const double slope = std::hypot(column.slopeX, column.slopeY);
    const double cubeRoot = std::cbrt(depth);
    const double speed = cubeRoot * cubeRoot * std::sqrt(slope) / manning(column);
    return alongSlope(column, speed, component);
}

double wellVelocity(const Place& place, const Weather& weather, int component) {
    if (component != 2) return 0;
    return (1.9e-3 + 0.21 * weather.ridge) * (1 - depthBelowGround(place) / 71.3);
}

double tileVelocity(const Place& place, const Weather& weather, int component) {
    return alongSlope(*place.column, 0.0137 + 3.7 * weather.valley, component);
}

double flowRate(const Place& place, const Weather& weather, int) {
    const double x = surfaceVelocity(place, weather, 0);
    const double y = surfaceVelocity(place, weather, 1);
    const double width = 1.93 + 0.021 * place.cellLength;
    return std::hypot(x, y) * std::max(0.0, pondDepth(place, weather)) * width;
}

double friction(const Place& place, const Weather&, int component) {
    return manning(*place.column) * (component == 0 ? 1 : 1.08) * place.column->variation;
}

double newtonResidual(const Place& place, const Weather& weather, int) {
    const Column& column = *place.column;
    const double swing =
        std::sin(column.x / 7.1 + 0.0011 * weather.time) * std::cos(column.y / 5.3);
    return 3.1e-9 * swing * (0.2 + weather.wetness) * std::cos(place.z / 1.7);
}

double peclet(const Place& place, const Weather& weather, int component) {
    const double x = pmVelocity(place, weather, 0);
    const double y = pmVelocity(place, weather, 1);
    const double z = pmVelocity(place, weather, 2);
    const double speed = std::hypot(x, y, z);
    const double own = component == 0 ? x : component == 1 ? y : z;
    return std::abs(own) * place.cellLength / (speed * 11.3 + 1.3e-9);
}

double diffusionPeclet(const Place& place, const Weather& weather, int component) {
    return std::abs(pmVelocity(place, weather, component)) * place.cellLength / 1.31e-9;
}

} // namespace problem_water
