#include "tvncommon/search/FixedResolutionGrid.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <typeinfo>

namespace FixedResolutionGrid {

namespace {

constexpr std::int64_t maximumEntries = std::numeric_limits<std::int32_t>::max() - 1;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Plan corners of an element, three or four. `known` is false if the coordinate arrays lack one.
struct Corners {
    std::array<double, 4> xs, ys;
    bool known = true;
};

Corners cornersOf(const FixedResGrid& grid, std::int32_t element) {
    const auto corners = static_cast<std::size_t>(grid.nodesPerPlan);
    const std::size_t begin = (static_cast<std::size_t>(element) - 1) * 2 * corners;
    Corners result;
    for (std::size_t k = 0; k < corners; ++k) {
        const std::size_t index = static_cast<std::size_t>(grid.elementNodes[begin + k]) - 1;
        const bool known = index < grid.x.size() && index < grid.y.size();
        result.xs[k] = known ? grid.x[index] : nan;
        result.ys[k] = known ? grid.y[index] : nan;
        result.known = result.known && known;
    }
    return result;
}

std::array<double, 4> boxOf(const FixedResGrid& grid, const Corners& corners) {
    const auto count = static_cast<std::size_t>(grid.nodesPerPlan);
    std::array<double, 4> box;
    getBoundingBox(std::span(corners.xs).first(count), std::span(corners.ys).first(count), box);
    return box;
}

// Returns the cell of a coordinate, from 0 to `highest`. If the quotient is NaN, as in a mesh
// without extent, it is the first cell.
std::int32_t cellOf(double coordinate, double lowest, double size, std::int32_t highest) {
    const double cell = (coordinate - lowest) / size;
    if (!(cell >= 1)) return 0;
    return cell < highest ? static_cast<std::int32_t>(cell) : highest;
}

// Returns the position of a coordinate in a cell, in 256ths of the cell, plus `more`. The result is
// limited to the cell.
std::uint8_t partOf(double coordinate, double lowest, double size, std::int32_t cell, int more) {
    const double part = ((coordinate - lowest) / size - cell) * 256 + more;
    if (!(part > 0)) return 0;
    return part < 255 ? static_cast<std::uint8_t>(part) : 255;
}

// Returns the part of the cell (i, j) that a box covers, with a margin of a 256th of the cell on
// each side.
CellExtent cellExtentOf(const FixedResGrid& grid, const std::array<double, 4>& box, std::int32_t i,
                        std::int32_t j) {
    return {partOf(box[0], grid.xmin, grid.dx, i, -1), partOf(box[1], grid.xmin, grid.dx, i, 1),
            partOf(box[2], grid.ymin, grid.dy, j, -1), partOf(box[3], grid.ymin, grid.dy, j, 1)};
}

double crossProduct(const Corners& c, std::size_t a, std::size_t b, double atX, double atY) {
    return (c.xs[b] - c.xs[a]) * (atY - c.ys[a]) - (c.ys[b] - c.ys[a]) * (atX - c.xs[a]);
}

// True if the inside test rejects every point that is outside the element's box by more than half a
// 256th of a cell. Rounding may make it accept such a point: an error of a cross product moves the
// edge by the part error / area of the box. A triangle without area even accepts every point of its
// line. The factor 4096 is 8 times the 512 of half a 256th. 1e-15 is more than four roundings of
// 2^-53, and 1e-300 is more than products lose to underflow.
bool isTestBoundedByBox(const FixedResGrid& grid, const Corners& c,
                        const std::array<double, 4>& box) {
    const double w = box[1] - box[0], h = box[3] - box[2];
    const double error = 1e-15 * (w * (h + grid.dy) + h * (w + grid.dx)) + 1e-300;
    const auto isWellShaped = [&](std::size_t second, std::size_t third) {
        const double area = std::fabs(crossProduct(c, 0, second, c.xs[third], c.ys[third]));
        return error * w * 4096 < area * grid.dx && error * h * 4096 < area * grid.dy &&
               area < std::numeric_limits<double>::max();
    };
    return isWellShaped(1, 2) && (grid.nodesPerPlan == 3 || isWellShaped(2, 3));
}

// Calls `use` with the indices and the number, from 0, of each cell that the box touches. A box
// without extent at the upper edge of the mesh begins after the last cell and so touches none.
template<class Use>
void forEachCell(const FixedResGrid& grid, const std::array<double, 4>& box, const Use& use) {
    const std::int32_t lastI = cellOf(box[1], grid.xmin, grid.dx, grid.nx - 1);
    const std::int32_t lastJ = cellOf(box[3], grid.ymin, grid.dy, grid.ny - 1);
    for (std::int32_t j = cellOf(box[2], grid.ymin, grid.dy, grid.ny); j <= lastJ; ++j)
        for (std::int32_t i = cellOf(box[0], grid.xmin, grid.dx, grid.nx); i <= lastI; ++i)
            use(i, j,
                static_cast<std::size_t>(j) * static_cast<std::size_t>(grid.nx) +
                    static_cast<std::size_t>(i));
}

void boundMesh(FixedResGrid& grid) {
    grid.xmin = grid.xmax = grid.x.empty() ? 0 : grid.x[0];
    grid.ymin = grid.ymax = grid.y.empty() ? 0 : grid.y[0];
    for (std::int32_t e = 1; e <= grid.elementCount; ++e) {
        const Corners corners = cornersOf(grid, e);
        for (std::size_t k = 0; k < static_cast<std::size_t>(grid.nodesPerPlan); ++k) {
            grid.xmin = std::fmin(grid.xmin, corners.xs[k]); // ignores NaN
            grid.xmax = std::fmax(grid.xmax, corners.xs[k]);
            grid.ymin = std::fmin(grid.ymin, corners.ys[k]);
            grid.ymax = std::fmax(grid.ymax, corners.ys[k]);
        }
    }
}

} // namespace

void FixedResGrid::init(std::int32_t cellsX, std::int32_t cellsY, std::int32_t count,
                        std::int32_t nodesPerElement, std::span<const double> nodeX,
                        std::span<const double> nodeY, std::span<const std::int32_t> nodes) {
    if (nodesPerElement != 6 && nodesPerElement != 8)
        error::input_error("Fixed resolution grid expects prism or block elements.");
    destroy();
    nx = std::max(cellsX, 1);
    ny = std::max(cellsY, 1);
    nodesPerPlan = nodesPerElement / 2;
    elementCount = std::max(count, 0);
    x = nodeX;
    y = nodeY;
    elementNodes = nodes;
    boundMesh(*this);
    dx = (xmax - xmin) / nx;
    dy = (ymax - ymin) / ny;
    buildTable();
}

void FixedResGrid::buildTable() {
    constexpr const char* workName = "Fixed resolution grid work array";
    const std::int64_t cells = std::int64_t{nx} * ny;
    if (cells > maximumEntries) ArrayHelpers::allocationFailed(workName);
    std::vector<std::int32_t> cursors;
    ArrayHelpers::allocateArray(cursors, cells, workName);
    std::int64_t entries = 0;
    constexpr const char* indexName = "Fixed resolution grid element index array";
    for (std::int32_t e = 1; e <= elementCount; ++e) {
        const std::array<double, 4> box = boxOf(*this, cornersOf(*this, e));
        forEachCell(*this, box, [&](std::int32_t, std::int32_t, std::size_t cell) {
            ++cursors[cell];
            ++entries;
        });
        if (entries > maximumEntries) ArrayHelpers::allocationFailed(indexName);
    }

    ArrayHelpers::allocateArray(rowIndex, cells + 1, "Fixed resolution grid row index array");
    ArrayHelpers::allocateArray(elementIndex, entries, indexName);
    ArrayHelpers::allocateArray(extents, entries, indexName);
    rowIndex[0] = 1;
    for (std::size_t cell = 0; cell < cursors.size(); ++cell) {
        rowIndex[cell + 1] = rowIndex[cell] + cursors[cell];
        cursors[cell] = rowIndex[cell] - 1;
    }
    for (std::int32_t e = 1; e <= elementCount; ++e) {
        const Corners corners = cornersOf(*this, e);
        const std::array<double, 4> box = boxOf(*this, corners);
        const bool bounded = isTestBoundedByBox(*this, corners, box);
        forEachCell(*this, box, [&](std::int32_t i, std::int32_t j, std::size_t cell) {
            const auto entry = static_cast<std::size_t>(cursors[cell]++);
            elementIndex[entry] = e;
            extents[entry] = bounded ? cellExtentOf(*this, box, i, j) : CellExtent{0, 255, 0, 255};
        });
    }
}

bool FixedResGrid::pointIn(std::int32_t element, double atX, double atY) const {
    if (element < 1 || element > elementCount) return false;
    const auto [xs, ys, known] = cornersOf(*this, element);
    if (!known) return false;
    if (pointInTri({xs[0], xs[1], xs[2]}, {ys[0], ys[1], ys[2]}, atX, atY)) return true;
    return nodesPerPlan == 4 && pointInTri({xs[0], xs[2], xs[3]}, {ys[0], ys[2], ys[3]}, atX, atY);
}

void FixedResGrid::destroy() {
    nx = ny = nodesPerPlan = elementCount = 0;
    xmin = ymin = xmax = ymax = dx = dy = 0;
    x = y = {};
    elementNodes = {};
    std::vector<std::int32_t>().swap(rowIndex);
    std::vector<std::int32_t>().swap(elementIndex);
    std::vector<CellExtent>().swap(extents);
}

bool FixedResGrid::empty() const {
    return nx == 0 || ny == 0;
}

std::int32_t FixedResGrid::findElement(double atX, double atY) const {
    const bool inside = atX >= xmin && atX <= xmax && atY >= ymin && atY <= ymax;
    if (empty() || !inside) return 0;
    const std::int32_t i = cellOf(atX, xmin, dx, nx - 1), j = cellOf(atY, ymin, dy, ny - 1);
    const std::size_t cell =
        static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i);
    const auto begin = static_cast<std::size_t>(rowIndex[cell]) - 1;
    const auto end = static_cast<std::size_t>(rowIndex[cell + 1]) - 1;
    if (typeid(*this) != typeid(FixedResGrid)) {
        for (std::size_t k = begin; k < end; ++k)
            if (pointIn(elementIndex[k], atX, atY)) return elementIndex[k];
        return 0;
    }
    // The inside test rejects a point outside the extents, so it need not be called for one.
    const std::uint8_t partX = partOf(atX, xmin, dx, i, 0), partY = partOf(atY, ymin, dy, j, 0);
    for (std::size_t k = begin; k < end; ++k) {
        const CellExtent& r = extents[k];
        if (partX < r.firstX || partX > r.lastX || partY < r.firstY || partY > r.lastY) continue;
        if (FixedResGrid::pointIn(elementIndex[k], atX, atY)) return elementIndex[k];
    }
    return 0;
}

bool pointInTri(const std::array<double, 3>& xs, const std::array<double, 3>& ys, double atX,
                double atY) {
    const auto side = [&](std::size_t a, std::size_t b) {
        return (xs[b] - xs[a]) * (atY - ys[a]) - (ys[b] - ys[a]) * (atX - xs[a]);
    };
    const bool right[] = {0 > side(0, 1), 0 > side(1, 2), 0 > side(2, 0)};
    // `&` evaluates both: a branch here would be mispredicted for every second point.
    return (right[0] == right[1]) & (right[0] == right[2]);
}

void getBoundingBox(std::span<const double> xs, std::span<const double> ys,
                    std::array<double, 4>& box) {
    box = {};
    if (xs.empty() || ys.empty()) return;
    box = {xs[0], xs[0], ys[0], ys[0]};
    for (const double value : xs) {
        if (value < box[0]) box[0] = value;
        if (value > box[1]) box[1] = value;
    }
    for (const double value : ys) {
        if (value < box[2]) box[2] = value;
        if (value > box[3]) box[3] = value;
    }
}

} // namespace FixedResolutionGrid
