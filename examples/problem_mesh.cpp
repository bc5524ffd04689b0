#include "examples/problem_mesh.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace problem_mesh {

namespace {

constexpr double length_along = 2137.4; // of the catchment, metres
constexpr double length_across = 1289.6;

// Grid lines are unevenly spaced, as in a mesh fitted to a site, so that no two cells are alike.
double grid_line(std::int32_t number, std::int32_t count, double length) {
    const double part = static_cast<double>(number) / count;
    const double shift = std::sin(2 * std::numbers::pi * part + 2.6) - std::sin(2.6);
    return length * (part + 0.021 * shift);
}

double stream_y(double x) {
    const double along = x / length_along;
    return length_across * (0.43 + 0.07 * std::sin(7.2 * along + 0.4));
}

double hill_at(double x, double y) {
    const double away = (y - stream_y(x)) / length_across;
    return 1 - std::exp(-(away / 0.31) * (away / 0.31));
}

double ground_at(double x, double y) {
    const double along = x / length_along;
    const double swells = 1.7 * std::sin(x / 143.1 + 0.7) * std::sin(y / 97.3);
    return 212.37 + 31.8 * along + 9.4 * along * along + 58.3 * hill_at(x, y) + swells;
}

Column make_column(double x, double y, double stream_width) {
    Column column;
    column.x = x;
    column.y = y;
    column.hill = hill_at(x, y);
    const double away = (y - stream_y(x)) / stream_width;
    // Far from the stream its influence is taken as nothing, not as a number below any meaning.
    if (away * away < 20) column.stream = std::exp(-away * away);
    column.ground = ground_at(x, y) - 1.35 * column.stream;
    column.bottom = column.ground - (46.3 + 12.7 * column.hill + 2.9 * std::sin(x / 311.7));
    const double step = 1.5;
    column.slope_x = (ground_at(x + step, y) - ground_at(x - step, y)) / (2 * step);
    column.slope_y = (ground_at(x, y + step) - ground_at(x, y - step)) / (2 * step);
    column.variation = 1 + 0.13 * std::sin(x / 83.7 + 0.4) * std::sin(y / 61.3 + 1.1) +
                       0.06 * std::sin(x / 29.1 + y / 37.7);
    return column;
}

void add_cells(Mesh& mesh, std::int32_t i, std::int32_t j) {
    const std::int32_t sw = column_number(mesh, i, j);
    const std::int32_t nw = column_number(mesh, i, j + 1);
    const std::int32_t se = sw + 1;
    const std::int32_t ne = nw + 1;
    const Column& low = mesh.columns[static_cast<std::size_t>(sw)];
    const Column& high = mesh.columns[static_cast<std::size_t>(ne)];
    const double area = (high.x - low.x) * (high.y - low.y);
    const auto add = [&mesh](Cell cell) {
        const auto used = static_cast<std::size_t>(corners_per_cell(mesh));
        cell.centre = mean_column(mesh, std::span(cell.corners).first(used));
        mesh.cells.push_back(cell);
    };
    if (mesh.prisms) {
        add(Cell{{sw, se, ne, 0}, {}, area / 2});
        add(Cell{{sw, ne, nw, 0}, {}, area / 2});
    } else {
        add(Cell{{sw, se, ne, nw}, {}, area});
    }
}

std::int32_t layer_of(const Mesh& mesh, std::int32_t element) {
    return element / static_cast<std::int32_t>(mesh.cells.size());
}

const Cell& cell_of(const Mesh& mesh, std::int32_t element) {
    return mesh.cells[static_cast<std::size_t>(element) % mesh.cells.size()];
}

} // namespace

WallLine wall_line(const Mesh& mesh) {
    return {std::max(1, mesh.nx * 2 / 3), mesh.ny - std::max(1, mesh.ny * 3 / 8)};
}

Mesh build(std::int32_t nx, std::int32_t ny, std::int32_t layers, bool prisms) {
    Mesh mesh;
    mesh.nx = nx;
    mesh.ny = ny;
    mesh.layers = layers;
    mesh.prisms = prisms;
    mesh.cell_length = std::sqrt(length_along / nx * length_across / ny);
    // On a coarse mesh the stream is wide enough to meet the nodes of its line.
    const double stream_width = std::max(13.7, 0.8 * length_across / ny);
    const auto quads = static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny);
    mesh.columns.reserve(quads + static_cast<std::size_t>(nx + ny + 1));
    mesh.cells.reserve(prisms ? 2 * quads : quads);
    for (std::int32_t j = 0; j <= ny; ++j) {
        const double y = grid_line(j, ny, length_across);
        for (std::int32_t i = 0; i <= nx; ++i)
            mesh.columns.push_back(make_column(grid_line(i, nx, length_along), y, stream_width));
    }
    const WallLine wall = wall_line(mesh);
    for (std::int32_t j = wall.first_row + 1; j <= ny; ++j)
        mesh.columns[static_cast<std::size_t>(column_number(mesh, wall.i, j))].wall = true;
    for (std::int32_t j = 0; j < ny; ++j)
        for (std::int32_t i = 0; i < nx; ++i) add_cells(mesh, i, j);
    // Layers become thinner towards the surface, where the water moves.
    for (std::int32_t sheet = 0; sheet <= layers; ++sheet)
        mesh.sheet_depth.push_back(std::pow(static_cast<double>(layers - sheet) / layers, 1.9));
    return mesh;
}

std::int32_t node_count(const Mesh& mesh) {
    return static_cast<std::int32_t>(mesh.columns.size()) * (mesh.layers + 1);
}

std::int32_t element_count(const Mesh& mesh) {
    return static_cast<std::int32_t>(mesh.cells.size()) * mesh.layers;
}

std::int32_t corners_per_cell(const Mesh& mesh) {
    return mesh.prisms ? 3 : 4;
}

Column mean_column(const Mesh& mesh, std::span<const std::int32_t> columns) {
    Column mean;
    mean.variation = 0;
    const double share = 1.0 / static_cast<double>(columns.size());
    for (const std::int32_t number : columns) {
        const Column& column = mesh.columns[static_cast<std::size_t>(number)];
        mean.x += share * column.x;
        mean.y += share * column.y;
        mean.ground += share * column.ground;
        mean.bottom += share * column.bottom;
        mean.slope_x += share * column.slope_x;
        mean.slope_y += share * column.slope_y;
        mean.stream += share * column.stream;
        mean.hill += share * column.hill;
        mean.variation += share * column.variation;
        mean.wall = mean.wall || column.wall;
    }
    return mean;
}

const Column& node_column(const Mesh& mesh, std::int32_t node) {
    return mesh.columns[static_cast<std::size_t>(node - 1) % mesh.columns.size()];
}

double node_elevation(const Mesh& mesh, std::int32_t node) {
    const std::size_t sheet = static_cast<std::size_t>(node - 1) / mesh.columns.size();
    return elevation(node_column(mesh, node), mesh.sheet_depth[sheet]);
}

std::int32_t stream_column(const Mesh& mesh, std::int32_t i) {
    std::int32_t nearest = column_number(mesh, i, 0);
    for (std::int32_t j = 1; j <= mesh.ny; ++j) {
        const std::int32_t candidate = column_number(mesh, i, j);
        const auto distance = [&mesh](std::int32_t number) {
            const Column& column = mesh.columns[static_cast<std::size_t>(number)];
            return std::abs(column.y - stream_y(column.x));
        };
        if (distance(candidate) < distance(nearest)) nearest = candidate;
    }
    return nearest;
}

std::int32_t element_nodes(const Mesh& mesh, std::int32_t element, std::int32_t* nodes) {
    const std::int32_t layer = layer_of(mesh, element);
    const Cell& cell = cell_of(mesh, element);
    const std::int32_t corners = corners_per_cell(mesh);
    for (std::int32_t k = 0; k < corners; ++k) {
        const std::int32_t column = cell.corners[static_cast<std::size_t>(k)];
        nodes[k] = node_number(mesh, column, layer);
        nodes[k + corners] = node_number(mesh, column, layer + 1);
    }
    return 2 * corners;
}

int ground_zone(const Column& column, double z) {
    const double depth = column.ground - z;
    if (column.hill < 0.08 && depth < 9.2) return 3;
    if (depth < 2.3) return 4;
    return depth < 17.4 ? 2 : 1;
}

double element_elevation(const Mesh& mesh, std::int32_t element) {
    const auto layer = static_cast<std::size_t>(layer_of(mesh, element));
    const double depth = 0.5 * (mesh.sheet_depth[layer] + mesh.sheet_depth[layer + 1]);
    return elevation(cell_of(mesh, element).centre, depth);
}

double element_volume(const Mesh& mesh, std::int32_t element) {
    const auto layer = static_cast<std::size_t>(layer_of(mesh, element));
    const Cell& cell = cell_of(mesh, element);
    const double part = mesh.sheet_depth[layer] - mesh.sheet_depth[layer + 1];
    return cell.area * part * (cell.centre.ground - cell.centre.bottom);
}

} // namespace problem_mesh
