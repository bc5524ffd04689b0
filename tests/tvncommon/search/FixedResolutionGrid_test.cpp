#include "tvncommon/search/FixedResolutionGrid.hpp"

#include "tests/support/runs.hpp"
#include "tests/tvncommon/search/plan_mesh.hpp"

#include <array>
#include <cmath>
#include <limits>
#include <tuple>

namespace {

using namespace FixedResolutionGrid;
using plan_mesh::makeMesh;
using plan_mesh::Mesh;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

void init(FixedResGrid& grid, const Mesh& mesh, std::int32_t nx, std::int32_t ny) {
    grid.init(nx, ny, mesh.planElementCount, mesh.nodesPerElement, mesh.x, mesh.y,
              mesh.elementNodes);
}

std::int32_t firstContaining(const FixedResGrid& grid, double x, double y) {
    for (std::int32_t e = 1; e <= grid.elementCount; ++e)
        if (grid.pointIn(e, x, y)) return e;
    return 0;
}

// Returns nodes of the mesh, points between them, points anywhere, and the corners of the grid.
std::vector<std::array<double, 2>> points(const FixedResGrid& grid, std::mt19937& random) {
    std::uniform_real_distribution<double> x(grid.xmin - 0.5, grid.xmax + 0.5);
    std::uniform_real_distribution<double> y(grid.ymin - 0.5, grid.ymax + 0.5);
    std::vector<std::array<double, 2>> found{{grid.xmin, grid.ymin},
                                             {grid.xmax, grid.ymin},
                                             {grid.xmin, grid.ymax},
                                             {grid.xmax, grid.ymax}};
    for (std::size_t i = 1; i < grid.x.size(); ++i) {
        found.push_back({grid.x[i], grid.y[i]});
        found.push_back({(grid.x[i] + grid.x[i - 1]) / 2, (grid.y[i] + grid.y[i - 1]) / 2});
        found.push_back({x(random), y(random)});
    }
    return found;
}

// The search of a derived record calls its own test for the elements of the cell.
struct Derived : FixedResGrid {
    mutable int tests = 0;
    bool pointIn(std::int32_t element, double px, double py) const override {
        ++tests;
        return FixedResGrid::pointIn(element, px, py);
    }
};

constexpr double oddCoordinates[] = {nan, infinity, -infinity, 1e308, -1e308, 1e200};
constexpr std::int32_t oddNodes[] = {0, -1, 1000000, 2147483647, -2147483647 - 1};

// Gives the mesh nodes with the same position, nodes on a line, elements with other nodes, and
// values and sizes of any magnitude.
void distort(Mesh& mesh, std::mt19937& random) {
    const auto any = [&] { return random() % (mesh.x.size() / 2); };
    for (int i = 0; i < 12; ++i) {
        const auto a = any(), b = any(), c = any();
        const auto kind = random() % 6;
        if (kind < 2) {
            mesh.x[a] = kind == 0 ? mesh.x[b] : (mesh.x[b] + mesh.x[c]) / 2;
            mesh.y[a] = kind == 0 ? mesh.y[b] : (mesh.y[b] + mesh.y[c]) / 2;
        } else if (kind == 2) {
            mesh.elementNodes[random() % mesh.elementNodes.size()] =
                c % 4 == 0 ? oddNodes[random() % 5] : static_cast<std::int32_t>(a);
        } else if (kind == 3) {
            mesh.y[a] = mesh.y[b] + 1e-15 * static_cast<double>(random() % 9);
        } else {
            mesh.x[a] = mesh.x[b];
        }
    }
    if (random() % 4 == 0) (random() % 2 ? mesh.x : mesh.y)[any()] = oddCoordinates[random() % 6];
    const double size = std::pow(10., 150 * (static_cast<int>(random() % 5) - 2));
    for (double& x : mesh.x) x *= size;
    for (double& y : mesh.y) y *= size;
}

TEST(FixedResolutionGrid, FindsTheFirstElementThatContainsAPoint) {
    std::mt19937 random(1);
    const std::array<std::int32_t, 2> sizes[] = {{1, 1}, {0, -3}, {7, 3}, {40, 50}, {2, 1000}};
    for (int round = 0; round < 500; ++round) {
        const bool odd = round >= 40;
        Mesh mesh =
            makeMesh({round % 2 == 0, 7, 6, 1, round % 3 * 0.2, odd ? 0 : round & 4}, random());
        if (odd) distort(mesh, random);
        FixedResGrid grid;
        Derived plain;
        const auto [nx, ny] = sizes[round % 5];
        init(grid, mesh, nx, ny);
        init(plain, mesh, nx, ny);
        ASSERT_EQ(std::pair(grid.nx, grid.ny), std::pair(std::max(nx, 1), std::max(ny, 1)));
        for (const auto [x, y] : points(grid, random))
            ASSERT_EQ(grid.findElement(x, y),
                      odd ? plain.findElement(x, y) : firstContaining(grid, x, y))
                << round << ": " << x << ", " << y;
        EXPECT_EQ(plain.tests > 0, odd);
        for (const std::int32_t element : oddNodes) EXPECT_FALSE(grid.pointIn(element, 1, 1));
    }
}

TEST(FixedResolutionGrid, TableListsCellsInOrder) {
    // Two squares; the edge between them is the border of the two cells.
    const std::vector<double> x{0, 1, 2, 0, 1, 2}, y{0, 0, 0, 1, 1, 1};
    const std::vector<std::int32_t> nodes{1, 2, 5, 4, 1, 2, 5, 4, 2, 3, 6, 5, 2, 3, 6, 5};
    FixedResGrid grid;
    grid.init(2, 1, 2, 8, x, y, nodes);
    EXPECT_EQ(grid.rowIndex, (std::vector<std::int32_t>{1, 2, 4}));
    EXPECT_EQ(grid.elementIndex, (std::vector<std::int32_t>{1, 1, 2}));
    EXPECT_EQ(grid.findElement(1, 0.5), 1);
    EXPECT_EQ(grid.findElement(2, 1), 2);
    EXPECT_EQ(grid.findElement(2.0000001, 1), 0);
    grid.init(3, 3, 1, 8, x, y, nodes);
    EXPECT_EQ(grid.xmax, 1);
    EXPECT_EQ(grid.findElement(1.5, 0.5), 0);
    FixedResGrid copy = grid;
    grid.destroy();
    EXPECT_TRUE(grid.empty());
    EXPECT_EQ(grid.findElement(0.5, 0.5), 0);
    EXPECT_EQ(copy.findElement(0.5, 0.5), 1);
    // An element without extent in x at the upper edge is in no cell.
    grid.init(2, 1, 2, 6, x, y, std::vector<std::int32_t>{1, 2, 4, 1, 2, 4, 3, 6, 3, 3, 6, 3});
    EXPECT_EQ(grid.findElement(2, 0.5), 0);
}

TEST(FixedResolutionGrid, PointsInTriangles) {
    // A point on an edge is in the anticlockwise triangle only.
    struct Case {
        double x, y;
        bool anticlockwise, clockwise;
    };
    for (const Case& c :
         {Case{1, 1, true, true}, Case{3, 3, false, false}, Case{2, 0, true, false},
          Case{0, 0, true, false}, Case{2, 2, true, false}, Case{nan, 1, true, true}}) {
        EXPECT_EQ(pointInTri({0, 4, 0}, {0, 0, 4}, c.x, c.y), c.anticlockwise) << c.x << " " << c.y;
        EXPECT_EQ(pointInTri({0, 0, 4}, {0, 4, 0}, c.x, c.y), c.clockwise) << c.x << " " << c.y;
    }
}

TEST(FixedResolutionGrid, MeshesWithoutExtent) {
    const std::vector<double> same{2, 2, 2}, rising{1, 2, 3};
    const std::vector<std::int32_t> nodes{1, 2, 3, 1, 2, 3};
    for (const auto& [x, y] : {std::pair{same, same}, {same, rising}, {rising, same}}) {
        FixedResGrid grid;
        grid.init(5, 5, 1, 6, x, y, nodes);
        EXPECT_EQ(grid.findElement(2, 2), 1);
        grid.init(5, 5, 0, 6, x, y, nodes);
        EXPECT_EQ(grid.findElement(2, 2), 0);
        EXPECT_FALSE(grid.empty());
    }
    FixedResGrid grid;
    grid.init(5, 5, 0, 8, {}, {}, {});
    EXPECT_EQ(grid.findElement(0, 0), 0);
    for (const std::vector<double>& xs : {std::vector<double>{}, same}) {
        std::array<double, 4> box{1, 2, 3, 4};
        getBoundingBox(xs, {}, box);
        EXPECT_EQ(box, (std::array<double, 4>{}));
    }
}

TEST(FixedResolutionGrid, InvalidArgumentsEndTheRun) {
    FixedResGrid grid;
    for (const auto& [nx, nodes, message] :
         {std::tuple{10, 4, "Fixed resolution grid expects prism or block elements."},
          {2147483647, 6, "Allocation failed: Fixed resolution grid work array"}})
        EXPECT_THAT(runs::endingOf([&, n = nx, k = nodes] { grid.init(n, 10, 0, k, {}, {}, {}); }),
                    testing::HasSubstr(message));
}

} // namespace
