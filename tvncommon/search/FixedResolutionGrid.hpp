#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// Finds the element of a layered mesh under which or over which a place in plan lies. A lattice of
// cells over the mesh tells for each cell the elements that may reach into it, so that a question
// costs a few triangle tests however large the mesh is.
//
// Elements are prisms of 6 or blocks of 8 nodes, of which the first half is the plan polygon: a
// triangle, or a quadrilateral cut in two from its first to its third node. Node and element
// numbers count from 1, and the nodes of an element stand side by side. The grid looks at the
// caller's arrays, which must outlive it. An element with a node outside the coordinate arrays
// holds no place, and one without extent at the upper edge of the mesh is in no cell.
namespace FixedResolutionGrid {

// Part of a cell outside of which an element holds no place, in 256ths of the cell.
struct Reach {
    std::uint8_t firstX, lastX, firstY, lastY;
};

// The members call one another through the record, so that another inside test can be put in.
struct FixedResGrid {
    std::int32_t nx = 0, ny = 0; // cells in x and y; cell (i, j) from 0 has number j * nx + i
    std::int32_t nodesPerPlan = 0;
    std::int32_t elementCount = 0;
    double xmin = 0, ymin = 0, xmax = 0, ymax = 0; // of the plan nodes
    double dx = 0, dy = 0;                         // size of a cell
    std::span<const double> x, y;
    std::span<const std::int32_t> elementNodes;
    std::vector<std::int32_t> rowIndex; // place of each cell's first element, from 1, and the end
    std::vector<std::int32_t> elementIndex; // elements cell by cell, ascending in each
    std::vector<Reach> reach; // of each of them; not looked at in a record of a further type

    FixedResGrid() = default;
    FixedResGrid(const FixedResGrid&) = default;
    FixedResGrid(FixedResGrid&&) = default;
    FixedResGrid& operator=(const FixedResGrid&) = default;
    FixedResGrid& operator=(FixedResGrid&&) = default;
    virtual ~FixedResGrid() = default;

    // Fills the two index arrays; memory that is not there ends the run.
    virtual void buildTable();

    // Whether the plan polygon of the element holds the place. One on an edge is held by elements
    // of one winding and may be missed by those of the other.
    virtual bool pointIn(std::int32_t element, double atX, double atY) const;

    // Lays the lattice, of at least one cell in each direction, over the first `count` elements.
    // Any `nodesPerElement` but 6 and 8 ends the run.
    virtual void init(std::int32_t cellsX, std::int32_t cellsY, std::int32_t count,
                      std::int32_t nodesPerElement, std::span<const double> nodeX,
                      std::span<const double> nodeY, std::span<const std::int32_t> nodes);
    virtual void destroy();
    virtual bool empty() const;

    // The lowest number among the elements that hold the place; 0 when none does.
    virtual std::int32_t findElement(double atX, double atY) const;
};

// Whether a triangle holds the place. Places on the line of an edge count as left of it, and so
// do those for which a number that is none leaves it open; in which turn the corners stand makes no
// other difference.
bool pointInTri(const std::array<double, 3>& xs, const std::array<double, 3>& ys, double atX,
                double atY);

// Puts the least and largest x and the least and largest y, in this order, into `box`; zeros where
// there is none.
void getBoundingBox(std::span<const double> xs, std::span<const double> ys,
                    std::array<double, 4>& box);

} // namespace FixedResolutionGrid
