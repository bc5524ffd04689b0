#include "examples/problem_ground.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace problem_ground {

namespace {

// Bedrock, weathered rock, valley alluvium, soil.
constexpr std::array<Material, 4> materials = {{
    {3.17e-8, 0.0417, 2.31e-6, 1.13, 0.213, 0.347, 0.0},
    {7.43e-7, 0.1183, 1.87e-5, 1.64, 0.158, 0.412, 0.0371},
    {2.26e-5, 0.2871, 9.43e-5, 3.42, 0.067, 0.583, 0.1734},
    {9.61e-6, 0.4127, 6.19e-5, 2.17, 0.093, 0.629, 0.0892},
}};

constexpr double day = 86400;

// Rise of a point of the ground, m. It is largest at the surface and 0 at the bottom.
double rise(const Place& place, const Weather& weather) {
    const problem_mesh::Column& column = *place.column;
    const double upstream = column.x / 2137.4 - 0.43;
    const double atStream = -13.7 * upstream * column.stream * column.variation;
    const double onHill = -0.71 * column.hill * column.slopeY * column.slopeY;
    const double part = (place.z - column.bottom) / (column.ground - column.bottom);
    return weather.runoff * (atStream + onHill) * part * part;
}

} // namespace

const Material& material(const Place& place) {
    return materials[static_cast<std::size_t>(place.groundZone - 1)];
}

double surfaceInfluence(const Place& place, double maximumDepth) {
    const double part = 1 - depthBelowGround(place) / maximumDepth;
    return part > 0 ? part * part : 0;
}

// The beds are parallel to the land surface and less conductive across than along them. The
// off-diagonal components are those of the tensor rotated by the slope, to leading order.
double conductivity(const Place& place, const Weather&, int component) {
    const problem_mesh::Column& column = *place.column;
    const double along = material(place).conductivity * column.variation * column.variation;
    const double aside = 0.83 * along;
    const double across = 0.21 * along;
    switch (component) {
    case 0:
        return along;
    case 1:
        return aside;
    case 2:
        return across;
    case 3:
        return (along - aside) * column.slopeX * column.slopeY;
    case 4:
        return (aside - across) * column.slopeY;
    default:
        return (along - across) * column.slopeX;
    }
}

double porosity(const Place& place, const Weather&, int) {
    const double compaction = 1 - 0.0017 * depthBelowGround(place);
    return material(place).porosity * (0.6 + 0.4 * place.column->variation) * compaction;
}

double specificStorage(const Place& place, const Weather&, int) {
    return material(place).specificStorage * place.column->variation;
}

double tortuosity(const Place& place, const Weather&, int) {
    return material(place).tortuosity * (0.8 + 0.2 * place.column->variation);
}

double interbedFraction(const Place& place, const Weather&, int) {
    return material(place).interbedFraction * place.column->variation;
}

double elementVolume(const Place& place, const Weather&, int) {
    return place.volume;
}

// Wet topsoil swells, which closes cracks.
double changingConductivity(const Place& place, const Weather& weather, int component) {
    const double swelling = weather.wetness * surfaceInfluence(place, 3.3);
    return conductivity(place, weather, component) * (1 - 0.17 * swelling);
}

double changingPorosity(const Place& place, const Weather& weather, int) {
    const double swelling = weather.wetness * surfaceInfluence(place, 3.3);
    return porosity(place, weather, 0) * (1 - 0.029 * swelling);
}

double changingStorage(const Place& place, const Weather& weather, int) {
    return specificStorage(place, weather, 0) * (1 + 1.9 * weather.ridge);
}

double frozenConductivity(const Place& place, const Weather& weather, int) {
    return conductivity(place, weather, 0) * std::pow(10, -6.2 * iceContent(place, weather, 0));
}

// The valley floor has a zone number of its own while it is wet after a storm.
double changingZone(const Place& place, const Weather& weather, int) {
    const bool soaked = place.column->hill < 0.04 && weather.valley > 0.018;
    return place.zone + (soaked ? 1 : 0);
}

double mineStrip(const Place& place, const Weather& weather, int) {
    const problem_mesh::Column& column = *place.column;
    if (column.hill < 0.5 || depthBelowGround(place) > 12.5) return 0;
    return std::floor((column.x + 0.0031 * weather.time) / 213.7);
}

double temperature(const Place& place, const Weather& weather, int) {
    const double depth = depthBelowGround(place);
    const double mean = 276.41 - 0.0431 * (place.column->ground - 212.37);
    const double dayWave = 0.71 * (weather.air - 278.43) * std::exp(-depth / 0.14);
    return mean + 5.73 * (1 - std::exp(-depth / 3.1)) + dayWave;
}

double iceContent(const Place& place, const Weather& weather, int) {
    return std::clamp(0.37 * (273.15 - temperature(place, weather, 0)), 0.0, 0.6);
}

double waterAge(const Place& place, const Weather& weather, int) {
    const double depth = depthBelowGround(place);
    const double travel = depth * (1 + 2.3 * place.column->hill) / place.column->variation;
    const double topsoil = 0.41 * place.column->variation;
    return day * (topsoil + 2.87 * travel) *
           (1 - 0.34 * weather.wetness * surfaceInfluence(place, 5));
}

double waterAgeRatio(const Place& place, const Weather& weather, int) {
    return 1 / (1 + waterAge(place, weather, 0) / (30 * day));
}

double locationProbability(const Place& place, const Weather& weather, int) {
    const double spread = 117.3 + 0.0019 * weather.time;
    const double dx = (place.column->x - 913.7) / spread;
    const double dy = (place.column->y - 702.9) / spread;
    const double dz = depthBelowGround(place) / 23.1;
    const double exponent = dx * dx + dy * dy + dz * dz;
    return exponent < 30 ? 1.37e-7 * std::exp(-exponent) : 0;
}

double fluidDensity(const Place& place, const Weather& weather, int) {
    const double warm = temperature(place, weather, 0) - 277.13;
    return 999.972 - 0.0071 * warm * warm + 0.0047 * depthBelowGround(place);
}

double movedElevation(const Place& place, const Weather& weather, int) {
    return place.z + rise(place, weather);
}

double movedZone(const Place& place, const Weather& weather, int) {
    const bool filled = rise(place, weather) > 0.013 && depthBelowGround(place) < 3.1;
    return filled ? 5 : place.zone;
}

double wallNumber(const Place& place, const Weather&, int) {
    return place.column->wall && depthBelowGround(place) < 21.5 ? 1 : 0;
}

} // namespace problem_ground
