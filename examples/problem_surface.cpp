#include "examples/problem_surface.hpp"

#include <algorithm>
#include <cmath>

#include "examples/problem_ground.hpp"
#include "examples/problem_water.hpp"

namespace problem_surface {

using problem_ground::surfaceInfluence;
using problem_mesh::Column;

namespace {

// Fraction of the precipitation that falls as snow. It increases with elevation and decreases with
// the air temperature.
double snowPart(const Place& place, const Weather& weather) {
    const double air = weather.air - 0.0063 * (place.column->ground - 212.37);
    return std::clamp(0.5 - 0.41 * (air - 274.35), 0.0, 1.0);
}

} // namespace

double rain(const Place& place, const Weather& weather, int) {
    return problem_water::rainRate(place, weather);
}

double specifiedFlux(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) - 0.11 * potentialEt(place, weather, 0);
}

double potentialEt(const Place& place, const Weather& weather, int) {
    const Column& column = *place.column;
    return (3.1e-9 + 6.7e-8 * weather.sun) * (1 - 0.23 * column.hill) * (1 + column.slopeY);
}

double surfaceEvaporation(const Place& place, const Weather& weather, int) {
    const double wet = problem_water::pondDepth(place, weather) > 0 ? 1 : 0.043;
    return 0.87 * wet * potentialEt(place, weather, 0);
}

double groundEvaporation(const Place& place, const Weather& weather, int) {
    const double open = 0.31 * weather.wetness * (1 - place.column->stream);
    return open * potentialEt(place, weather, 0);
}

double groundTranspiration(const Place& place, const Weather& weather, int) {
    const double cover = 0.42 * place.column->variation * (1 - place.column->stream);
    return cover * (0.6 + 0.4 * weather.wetness) * potentialEt(place, weather, 0);
}

double actualEt(const Place& place, const Weather& weather, int) {
    return surfaceEvaporation(place, weather, 0) + groundEvaporation(place, weather, 0) +
           groundTranspiration(place, weather, 0);
}

double nodeEvaporation(const Place& place, const Weather& weather, int) {
    return surfaceInfluence(place, 0.9) * groundEvaporation(place, weather, 0);
}

double nodeTranspiration(const Place& place, const Weather& weather, int) {
    return 0.37 * surfaceInfluence(place, 3.4) * groundTranspiration(place, weather, 0);
}

double snowDepth(const Place& place, const Weather& weather, int) {
    const double fallen = 0.0047 * (place.column->ground - 221.9) * place.column->variation;
    return std::max(0.0, fallen - 3.3 * weather.melted);
}

double snowMelt(const Place& place, const Weather& weather, int) {
    if (snowDepth(place, weather, 0) <= 0) return 0;
    return weather.meltRate * (1 + 0.4 * place.column->slopeY);
}

double liquidPrecipitation(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) * (1 - snowPart(place, weather));
}

double solidPrecipitation(const Place& place, const Weather& weather, int) {
    return rain(place, weather, 0) * snowPart(place, weather);
}

double snowElevation(const Place& place, const Weather& weather, int) {
    return place.column->ground + snowDepth(place, weather, 0);
}

double surfaceExchange(const Place& place, const Weather& weather, int) {
    const double baseFlow = 1.7e-7 * (1 + 37 * weather.valley) * place.column->stream;
    return baseFlow - problem_water::infiltrationRate(place, weather);
}

double lineExchange(const Place& place, const Weather& weather, int) {
    const double inflow = problem_ground::conductivity(place, weather, 0) * 0.0173;
    return inflow * (1 + 11.9 * weather.valley);
}

double dualExchange(const Place& place, const Weather& weather, int) {
    const double area = place.cellLength * place.cellLength;
    return -area * macroporeExchange(place, weather, 0);
}

double macroporeExchange(const Place& place, const Weather& weather, int) {
    const double seeping = 0.19 * problem_water::infiltrationRate(place, weather);
    const double resting = 2.3e-9 * weather.wetness * place.column->variation;
    return (seeping + resting) * surfaceInfluence(place, 37.1);
}

} // namespace problem_surface
