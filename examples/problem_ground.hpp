#pragma once

#include "examples/problem_domains.hpp"
#include "examples/problem_weather.hpp"

// The ground: material properties, temperature, age of its water, and movement of the surface. A
// field returns one component of the value at a place and time, in SI units. Components count from
// 0.
namespace problem_ground {

using problem_domains::Place;
using problem_weather::Weather;

// Mean properties of a material.
struct Material {
    double conductivity;     // saturated, m/s
    double porosity;         // part of 1
    double specificStorage;  // 1/m
    double retention;        // inverse length scale of the saturation curve, 1/m
    double residual;         // residual saturation
    double tortuosity;       // part of 1
    double interbedFraction; // of compressible beds, part of 1
};
const Material& material(const Place& place);

inline double depthBelowGround(const Place& place) {
    return place.column->ground - place.z;
}

// Influence of the surface: 1 at the surface, decreasing to exactly 0 at this depth in metres.
double surfaceInfluence(const Place& place, double maximumDepth);

double conductivity(const Place&, const Weather&, int component); // xx, yy, zz, xy, yz, zx; m/s
double porosity(const Place&, const Weather&, int);
double specificStorage(const Place&, const Weather&, int); // 1/m
double tortuosity(const Place&, const Weather&, int);
double interbedFraction(const Place&, const Weather&, int);
double elementVolume(const Place&, const Weather&, int); // m3

// The same properties where they change in time, and the zone.
double changingConductivity(const Place&, const Weather&, int component);
double changingPorosity(const Place&, const Weather&, int);
double changingStorage(const Place&, const Weather&, int);
double frozenConductivity(const Place&, const Weather&, int);
double changingZone(const Place&, const Weather&, int);
double mineStrip(const Place&, const Weather&, int); // number of the strip mined so far

double temperature(const Place&, const Weather&, int); // K
double iceContent(const Place&, const Weather&, int);  // part of the water, up to 0.6

double waterAge(const Place&, const Weather&, int);      // s
double waterAgeRatio(const Place&, const Weather&, int); // part of the water younger than a month
double locationProbability(const Place&, const Weather&, int); // of a source, 1/m3
double fluidDensity(const Place&, const Weather&, int);        // kg/m3

// The ground at the current time. The stream erodes its upper course and deposits in its lower
// course, and the hill sides creep. The deposit has a zone number of its own.
double movedElevation(const Place&, const Weather&, int); // m
double movedZone(const Place&, const Weather&, int);

// Number of the cutoff wall at a node or an adjacent element, 0 elsewhere and below the wall.
double wallNumber(const Place&, const Weather&, int);

} // namespace problem_ground
