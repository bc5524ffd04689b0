#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// The porous medium of the sample problem: a hill slope catchment, about 2.1 km along the valley
// and 1.3 km across, with a meandering stream between two ridges. Its size is fixed, so more cells
// give a finer mesh of the same land.
//
// Nodes are numbered sheet by sheet from the bottom up. Each sheet is a grid of (nx + 1) by
// (ny + 1) nodes, x fastest, and the nodes of a column have the same x and y. Elements are numbered
// layer by layer in the same way. Element, cell, column and sheet numbers start at 0. Node numbers
// start at 1, as in the files, because links and element lists consist of them.
namespace problem_mesh {

// Properties of a point of the plan that do not depend on elevation or time. Lengths in metres.
struct Column {
    double x = 0;
    double y = 0;
    double ground = 0;    // elevation of the surface
    double bottom = 0;    // elevation of the lowest sheet
    double slopeX = 0;    // of the ground
    double slopeY = 0;    // of the ground
    double stream = 0;    // 1 on the stream line, decreases to 0 with the distance from it
    double hill = 0;      // 0 in the valley, close to 1 on the ridges
    double variation = 1; // factor of soil properties: a smooth function near 1
    bool wall = false;    // is on a cutoff wall
};

// A cell of the plan: one quad, or one of the two triangles of a quad.
struct Cell {
    std::array<std::int32_t, 4> corners{}; // column numbers, counter-clockwise; the last of a
                                           // triangle is unused
    Column centre;                         // mean of the corners
    double area = 0;                       // square metres
};

struct Mesh {
    std::int32_t nx = 0;
    std::int32_t ny = 0;
    std::int32_t layers = 0;
    bool prisms = false;
    double cellLength = 0;          // mean side of a quad of the plan, metres
    std::vector<Column> columns;    // of nodes, (nx + 1) by (ny + 1)
    std::vector<Cell> cells;        // of the plan; the two triangles of a quad are consecutive
    std::vector<double> sheetDepth; // per sheet, as a fraction of the column's height: 1 to 0
};

// The columns of a cutoff wall: column `i` of the rows after `firstRow` up to the last one. The
// wall ends at the column in `firstRow`, which is not on it.
struct WallLine {
    std::int32_t i = 0;
    std::int32_t firstRow = 0;
};
WallLine wallLine(const Mesh& mesh);

// Builds the plan. Only the plan is kept in memory. The functions below compute the 3D mesh.
Mesh build(std::int32_t nx, std::int32_t ny, std::int32_t layers, bool prisms);

std::int32_t nodeCount(const Mesh& mesh);
std::int32_t elementCount(const Mesh& mesh);
std::int32_t cornersPerCell(const Mesh& mesh);

inline std::int32_t columnNumber(const Mesh& mesh, std::int32_t i, std::int32_t j) {
    return j * (mesh.nx + 1) + i;
}
inline std::int32_t nodeNumber(const Mesh& mesh, std::int32_t column, std::int32_t sheet) {
    return sheet * static_cast<std::int32_t>(mesh.columns.size()) + column + 1;
}
// Elevation at a depth that is a fraction of the column's height.
inline double elevation(const Column& column, double depth) {
    return column.ground - depth * (column.ground - column.bottom);
}

// The mean of some columns. It is on the wall if one of them is.
Column meanColumn(const Mesh& mesh, std::span<const std::int32_t> columns);

// The column and the elevation of a node.
const Column& nodeColumn(const Mesh& mesh, std::int32_t node);
double nodeElevation(const Mesh& mesh, std::int32_t node);

// y of the stream at an x, metres.
double streamLine(double x);

// The column of the stream line in the i-th row of columns across the valley.
std::int32_t streamColumn(const Mesh& mesh, std::int32_t i);

// Writes the node numbers of an element to `nodes`, lower face first. Returns their number, 6 or 8.
std::int32_t elementNodes(const Mesh& mesh, std::int32_t element, std::int32_t* nodes);

// Material at elevation z: 1 bedrock, 2 weathered rock, 3 valley alluvium, 4 soil.
int groundZone(const Column& column, double z);

// Elevation of an element's centre, and its volume in cubic metres.
double elementElevation(const Mesh& mesh, std::int32_t element);
double elementVolume(const Mesh& mesh, std::int32_t element);

} // namespace problem_mesh
