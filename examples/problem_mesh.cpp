#include "examples/problem_mesh.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace problem_mesh {

namespace {

constexpr double lengthAlong = 2137.4; // of the catchment, metres
constexpr double lengthAcross = 1289.6;

// Grid lines are unevenly spaced, as in a mesh of a real site, so that no two cells are equal.
double gridLine(std::int32_t number, std::int32_t count, double length) {
    const double part = static_cast<double>(number) / count;
    const double shift = std::sin(2 * std::numbers::pi * part + 2.6) - std::sin(2.6);
    return length * (part + 0.021 * shift);
}

double hillAt(double x, double y) {
    const double away = (y - streamLine(x)) / lengthAcross;
    return 1 - std::exp(-(away / 0.31) * (away / 0.31));
}

double groundAt(double x, double y) {
    const double along = x / lengthAlong;
    const double swells = 1.7 * std::sin(x / 143.1 + 0.7) * std::sin(y / 97.3);
    return 212.37 + 31.8 * along + 9.4 * along * along + 58.3 * hillAt(x, y) + swells;
}

Column makeColumn(double x, double y, double streamWidth) {
    Column column;
    column.x = x;
    column.y = y;
    column.hill = hillAt(x, y);
    const double away = (y - streamLine(x)) / streamWidth;
    // Set to exactly 0 far from the stream, which avoids values close to underflow.
    if (away * away < 20) column.stream = std::exp(-away * away);
    column.ground = groundAt(x, y) - 1.35 * column.stream;
    column.bottom = column.ground - (46.3 + 12.7 * column.hill + 2.9 * std::sin(x / 311.7));
    const double step = 1.5;
    column.slopeX = (groundAt(x + step, y) - groundAt(x - step, y)) / (2 * step);
    column.slopeY = (groundAt(x, y + step) - groundAt(x, y - step)) / (2 * step);
    column.variation = 1 + 0.13 * std::sin(x / 83.7 + 0.4) * std::sin(y / 61.3 + 1.1) +
                       0.06 * std::sin(x / 29.1 + y / 37.7);
    return column;
}

void addCells(Mesh& mesh, std::int32_t i, std::int32_t j) {
    const std::int32_t sw = columnNumber(mesh, i, j);
    const std::int32_t nw = columnNumber(mesh, i, j + 1);
    const std::int32_t se = sw + 1;
    const std::int32_t ne = nw + 1;
    const Column& low = mesh.columns[static_cast<std::size_t>(sw)];
    const Column& high = mesh.columns[static_cast<std::size_t>(ne)];
    const double area = (high.x - low.x) * (high.y - low.y);
    const auto add = [&mesh](Cell cell) {
        const auto used = static_cast<std::size_t>(cornersPerCell(mesh));
        cell.centre = meanColumn(mesh, std::span(cell.corners).first(used));
        mesh.cells.push_back(cell);
    };
    if (mesh.prisms) {
        add(Cell{{sw, se, ne, 0}, {}, area / 2});
        add(Cell{{sw, ne, nw, 0}, {}, area / 2});
    } else {
        add(Cell{{sw, se, ne, nw}, {}, area});
    }
}

std::int32_t layerOf(const Mesh& mesh, std::int32_t element) {
    return element / static_cast<std::int32_t>(mesh.cells.size());
}

const Cell& cellOf(const Mesh& mesh, std::int32_t element) {
    return mesh.cells[static_cast<std::size_t>(element) % mesh.cells.size()];
}

} // namespace

double streamLine(double x) {
    const double along = x / lengthAlong;
    return lengthAcross * (0.43 + 0.07 * std::sin(7.2 * along + 0.4));
}

WallLine wallLine(const Mesh& mesh) {
    return {std::max(1, mesh.nx * 2 / 3), mesh.ny - std::max(1, mesh.ny * 3 / 8)};
}

Mesh build(std::int32_t nx, std::int32_t ny, std::int32_t layers, bool prisms) {
    Mesh mesh;
    mesh.nx = nx;
    mesh.ny = ny;
    mesh.layers = layers;
    mesh.prisms = prisms;
    mesh.cellLength = std::sqrt(lengthAlong / nx * lengthAcross / ny);
    // On a coarse mesh the stream is widened so that it includes the nodes next to its line.
    const double streamWidth = std::max(13.7, 0.8 * lengthAcross / ny);
    const auto quads = static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny);
    mesh.columns.reserve(quads + static_cast<std::size_t>(nx + ny + 1));
    mesh.cells.reserve(prisms ? 2 * quads : quads);
    for (std::int32_t j = 0; j <= ny; ++j) {
        const double y = gridLine(j, ny, lengthAcross);
        for (std::int32_t i = 0; i <= nx; ++i)
            mesh.columns.push_back(makeColumn(gridLine(i, nx, lengthAlong), y, streamWidth));
    }
    const WallLine wall = wallLine(mesh);
    for (std::int32_t j = wall.firstRow + 1; j <= ny; ++j)
        mesh.columns[static_cast<std::size_t>(columnNumber(mesh, wall.i, j))].wall = true;
    for (std::int32_t j = 0; j < ny; ++j)
        for (std::int32_t i = 0; i < nx; ++i) addCells(mesh, i, j);
    // Layers become thinner towards the surface, where heads change most.
    for (std::int32_t sheet = 0; sheet <= layers; ++sheet)
        mesh.sheetDepth.push_back(std::pow(static_cast<double>(layers - sheet) / layers, 1.9));
    return mesh;
}

std::int32_t nodeCount(const Mesh& mesh) {
    return static_cast<std::int32_t>(mesh.columns.size()) * (mesh.layers + 1);
}

std::int32_t elementCount(const Mesh& mesh) {
    return static_cast<std::int32_t>(mesh.cells.size()) * mesh.layers;
}

std::int32_t cornersPerCell(const Mesh& mesh) {
    return mesh.prisms ? 3 : 4;
}

Column meanColumn(const Mesh& mesh, std::span<const std::int32_t> columns) {
    Column mean;
    mean.variation = 0;
    const double share = 1.0 / static_cast<double>(columns.size());
    for (const std::int32_t number : columns) {
        const Column& column = mesh.columns[static_cast<std::size_t>(number)];
        mean.x += share * column.x;
        mean.y += share * column.y;
        mean.ground += share * column.ground;
        mean.bottom += share * column.bottom;
        mean.slopeX += share * column.slopeX;
        mean.slopeY += share * column.slopeY;
        mean.stream += share * column.stream;
        mean.hill += share * column.hill;
        mean.variation += share * column.variation;
        mean.wall = mean.wall || column.wall;
    }
    return mean;
}

const Column& nodeColumn(const Mesh& mesh, std::int32_t node) {
    return mesh.columns[static_cast<std::size_t>(node - 1) % mesh.columns.size()];
}

double nodeElevation(const Mesh& mesh, std::int32_t node) {
    const std::size_t sheet = static_cast<std::size_t>(node - 1) / mesh.columns.size();
    return elevation(nodeColumn(mesh, node), mesh.sheetDepth[sheet]);
}

std::int32_t streamColumn(const Mesh& mesh, std::int32_t i) {
    std::int32_t nearest = columnNumber(mesh, i, 0);
    for (std::int32_t j = 1; j <= mesh.ny; ++j) {
        const std::int32_t candidate = columnNumber(mesh, i, j);
        const auto distance = [&mesh](std::int32_t number) {
            const Column& column = mesh.columns[static_cast<std::size_t>(number)];
            return std::abs(column.y - streamLine(column.x));
        };
        if (distance(candidate) < distance(nearest)) nearest = candidate;
    }
    return nearest;
}

std::int32_t elementNodes(const Mesh& mesh, std::int32_t element, std::int32_t* nodes) {
    const std::int32_t layer = layerOf(mesh, element);
    const Cell& cell = cellOf(mesh, element);
    const std::int32_t corners = cornersPerCell(mesh);
    for (std::int32_t k = 0; k < corners; ++k) {
        const std::int32_t column = cell.corners[static_cast<std::size_t>(k)];
        nodes[k] = nodeNumber(mesh, column, layer);
        nodes[k + corners] = nodeNumber(mesh, column, layer + 1);
    }
    return 2 * corners;
}

int groundZone(const Column& column, double z) {
    const double depth = column.ground - z;
    if (column.hill < 0.08 && depth < 9.2) return 3;
    if (depth < 2.3) return 4;
    return depth < 17.4 ? 2 : 1;
}

double elementElevation(const Mesh& mesh, std::int32_t element) {
    const auto layer = static_cast<std::size_t>(layerOf(mesh, element));
    const double depth = 0.5 * (mesh.sheetDepth[layer] + mesh.sheetDepth[layer + 1]);
    return elevation(cellOf(mesh, element).centre, depth);
}

double elementVolume(const Mesh& mesh, std::int32_t element) {
    const auto layer = static_cast<std::size_t>(layerOf(mesh, element));
    const Cell& cell = cellOf(mesh, element);
    const double part = mesh.sheetDepth[layer] - mesh.sheetDepth[layer + 1];
    return cell.area * part * (cell.centre.ground - cell.centre.bottom);
}

} // namespace problem_mesh
