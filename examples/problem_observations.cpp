#include "examples/problem_observations.hpp"

#include <algorithm>
#include <cstdio>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "examples/problem_water.hpp"

namespace problem_observations {

using problem_domains::Place;
using problem_domains::Tag;
using problem_files::Problem;
using problem_mesh::Column;
using problem_weather::Weather;

namespace {

struct Site {
    Column column; // x and y are those of the measurement
    double z = 0;
    double error = 0; // of the measurement, metres
};

// Returns a number from 0 to 1. The sequence is the same on every machine.
double part(std::mt19937& random) {
    return static_cast<double>(random() % 100000) / 100000;
}

// Returns a site near the centre of a cell, at any depth. Some sites are outside the mesh.
Site chooseSite(const problem_mesh::Mesh& mesh, std::mt19937& random, std::int32_t number) {
    Site site;
    site.column = mesh.cells[random() % mesh.cells.size()].centre;
    site.column.x += 0.2 * mesh.cellLength * (part(random) - 0.5);
    site.column.y += 0.2 * mesh.cellLength * (part(random) - 0.5);
    site.z = problem_mesh::elevation(site.column, part(random));
    site.error = 0.14 * (part(random) - 0.5);
    if (number % 7 == 3) site.z = site.column.ground + 2.6;
    if (number % 11 == 5) site.column.y -= 1700;
    if (number % 13 == 8) site.column.x += 6400;
    return site;
}

// Returns a site inside a cell, near its first corner: no other node is closer in plan.
Site chooseSiteAtNode(const problem_mesh::Mesh& mesh, std::mt19937& random, bool inStream) {
    const auto cellsPerQuad = mesh.prisms ? 2U : 1U;
    std::size_t quad = random() % (mesh.cells.size() / cellsPerQuad);
    if (inStream) {
        const auto nx = static_cast<std::size_t>(mesh.nx);
        const std::size_t i = quad % nx;
        const auto column = problem_mesh::streamColumn(mesh, static_cast<std::int32_t>(i));
        quad = static_cast<std::size_t>(column) / (nx + 1) * nx + i;
    }
    const problem_mesh::Cell& cell = mesh.cells[quad * cellsPerQuad];
    const auto corners =
        std::span(cell.corners).first(static_cast<std::size_t>(problem_mesh::cornersPerCell(mesh)));
    std::vector<std::int32_t> weighted(40, corners[0]);
    weighted.insert(weighted.end(), corners.begin(), corners.end());
    Site site;
    site.column = problem_mesh::meanColumn(mesh, weighted);
    site.z = problem_mesh::elevation(site.column, part(random));
    site.error = 0.14 * (part(random) - 0.5);
    return site;
}

// Returns the values of a line, all of them lengths in metres.
using Measure = std::vector<double> (*)(const Site&, const Place&, const Weather&);

void writeFile(Problem& problem, const Weather& weather, const Kind& kind, const std::string& name,
               Measure measure, bool inStream = false) {
    std::mt19937 random;
    std::string text = std::to_string(kind.count) + "\n";
    for (std::int32_t number = 0; number < kind.count; ++number) {
        const Site site = kind.atNodes ? chooseSiteAtNode(problem.mesh, random, inStream)
                                       : chooseSite(problem.mesh, random, number);
        Place place;
        place.column = &site.column;
        place.z = site.z;
        for (const double value : measure(site, place, weather)) {
            char field[64];
            std::snprintf(field, sizeof field, "%15.4f", problem_files::perMetre(problem) * value);
            text += field;
        }
        text += '\n';
    }
    problem_files::writeText(problem, problem.prefix + "." + name, text);
}

std::vector<double> head(const Site& site, const Place& place, const Weather& weather) {
    return {site.column.x, site.column.y, site.z,
            problem_water::pmHead(place, weather, 0) + site.error};
}

std::vector<double> tableElevation(const Site& site, const Place& place, const Weather& weather) {
    return {site.column.x, site.column.y, problem_water::waterTable(place, weather) + site.error};
}

std::vector<double> tableDepth(const Site& site, const Place& place, const Weather& weather) {
    return {site.column.x, site.column.y,
            site.column.ground - problem_water::waterTable(place, weather) + site.error};
}

std::vector<double> waterDepth(const Site& site, const Place& place, const Weather& weather) {
    const double depth = problem_water::pondDepth(place, weather) + 0.1 * site.error;
    return {site.column.x, site.column.y, std::max(0.0, depth)};
}

} // namespace

void write(Problem& problem, const Weather& weather, const Kind& kind) {
    if (kind.count == 0) return;
    writeFile(problem, weather, kind, "observed_heads", kind.waterTable ? tableElevation : head);
    writeFile(problem, weather, kind, "observed_d2gwt", tableDepth);
    const bool surface = std::any_of(problem.domains.begin(), problem.domains.end(),
                                     [](const auto& domain) { return domain.tag == Tag::olf; });
    if (surface) writeFile(problem, weather, kind, "observed_heads_olf", waterDepth, true);
}

} // namespace problem_observations
