#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

// Finds the element of a layered mesh that contains a point in plan. A grid of rectangular cells
// covers the mesh. Each cell has a list of the elements that may overlap it. A query needs a few
// triangle tests, independently of the size of the mesh.
//
// Elements are prisms of 6 or blocks of 8 nodes. The first half of the nodes is the plan polygon: a
// triangle, or a quadrilateral divided from its first to its third node. Node and element numbers
// count from 1, and the nodes of an element are contiguous. The grid refers to the caller's arrays,
// which must outlive it. An element with a node outside the coordinate arrays contains no point,
// and one without extent at the upper edge of the mesh is in no cell.
namespace FixedResolutionGrid {

// The part of a cell outside of which an element contains no point, in 256ths of the cell.
struct CellExtent {
    std::uint8_t firstX, lastX, firstY, lastY;
};

// The members are virtual so that a derived record can replace the inside test.
struct FixedResGrid {
    std::int32_t nx = 0, ny = 0; // cells in x and y; cell (i, j) from 0 has number j * nx + i
    std::int32_t nodesPerPlan = 0;
    std::int32_t elementCount = 0;
    double xmin = 0, ymin = 0, xmax = 0, ymax = 0; // of the plan nodes
    double dx = 0, dy = 0;                         // size of a cell
    std::span<const double> x, y;
    std::span<const std::int32_t> elementNodes;
    std::vector<std::int32_t> rowIndex;     // first element of each cell, from 1, and the end
    std::vector<std::int32_t> elementIndex; // elements cell by cell, ascending in each
    std::vector<CellExtent> extents;        // one for each entry; not used in a derived record

    FixedResGrid() = default;
    FixedResGrid(const FixedResGrid&) = default;
    FixedResGrid(FixedResGrid&&) = default;
    FixedResGrid& operator=(const FixedResGrid&) = default;
    FixedResGrid& operator=(FixedResGrid&&) = default;
    virtual ~FixedResGrid() = default;

    // Fills the arrays of the cells; a failed allocation ends the run.
    virtual void buildTable();

    // True if the plan polygon of the element contains the point. A point on an edge is in elements
    // of one direction of corners only, see `pointInTri`.
    virtual bool pointIn(std::int32_t element, double atX, double atY) const;

    // Builds the grid, of at least one cell in each direction, over the first `count` elements. A
    // `nodesPerElement` other than 6 and 8 ends the run.
    virtual void init(std::int32_t cellsX, std::int32_t cellsY, std::int32_t count,
                      std::int32_t nodesPerElement, std::span<const double> nodeX,
                      std::span<const double> nodeY, std::span<const std::int32_t> nodes);
    virtual void destroy();
    virtual bool empty() const;

    // Returns the lowest number of an element that contains the point, or 0.
    virtual std::int32_t findElement(double atX, double atY) const;
};

// True if the triangle contains the point: it must be on the same side of all three edges. A point
// on the line of an edge counts as left of it. So does a point whose side is unknown because of
// NaN. Therefore a point on an edge is in a triangle of counterclockwise corners, not in one of
// clockwise corners.
bool pointInTri(const std::array<double, 3>& xs, const std::array<double, 3>& ys, double atX,
                double atY);

// Stores the least and greatest x and the least and greatest y, in this order, in `box`. Without
// values, stores zeros.
void getBoundingBox(std::span<const double> xs, std::span<const double> ys,
                    std::array<double, 4>& box);

} // namespace FixedResolutionGrid
