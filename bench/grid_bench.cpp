#include "bench/side_by_side.hpp"
#include "tvncommon/search/FixedResolutionGrid.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr std::int32_t cells = 1000; // of the grid in x and in y, as in the element search
constexpr std::size_t queryCount = 1000000;
constexpr double limit = 1000; // nanoseconds per query

// Plan mesh of a million elements whose nodes deviate slightly from a square lattice. The grid uses
// only the first half of an element's nodes. The others are those of the sheet above.
struct Mesh {
    std::int32_t nodesPerElement = 0, elementCount = 0;
    std::vector<double> x, y;
    std::vector<std::int32_t> elementNodes;
};

Mesh makeMesh(bool blocks) {
    Mesh mesh;
    mesh.nodesPerElement = blocks ? 8 : 6;
    const std::int32_t columns = 1000, rows = blocks ? 1000 : 500;
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> offset(-0.2, 0.2);
    for (std::int32_t j = 0; j <= rows; ++j)
        for (std::int32_t i = 0; i <= columns; ++i) {
            mesh.x.push_back(i + offset(random));
            mesh.y.push_back(j + offset(random));
        }
    const std::int32_t sheet = (columns + 1) * (rows + 1);
    const auto add = [&](const std::vector<std::int32_t>& plan) {
        for (const std::int32_t above : {0, sheet})
            for (const std::int32_t node : plan) mesh.elementNodes.push_back(node + above);
        ++mesh.elementCount;
    };
    for (std::int32_t j = 0; j < rows; ++j)
        for (std::int32_t i = 0; i < columns; ++i) {
            const std::int32_t a = j * (columns + 1) + i + 1, d = a + columns + 1;
            if (blocks) {
                add({a, a + 1, d + 1, d});
            } else {
                add({a, a + 1, d + 1});
                add({a, d + 1, d});
            }
        }
    return mesh;
}

bool measure(const char* what, bool blocks) {
    const Mesh mesh = makeMesh(blocks);
    FixedResolutionGrid::FixedResGrid grid;
    const double building = side_by_side::seconds([&] {
        grid.init(cells, cells, mesh.elementCount, mesh.nodesPerElement, mesh.x, mesh.y,
                  mesh.elementNodes);
    });
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> x(grid.xmin, grid.xmax), y(grid.ymin, grid.ymax);
    std::vector<std::array<double, 2>> points(queryCount);
    for (auto& point : points) point = {x(random), y(random)};
    std::size_t found = 0;
    std::vector<double> times;
    for (int round = 0; round < side_by_side::rounds; ++round)
        times.push_back(side_by_side::seconds([&] {
            for (const auto& point : points) found += grid.findElement(point[0], point[1]) > 0;
        }));
    const double each = side_by_side::median(times) * 1e9 / static_cast<double>(queryCount);
    std::printf("%-28s %10d %10.0f %14.0f %8.0f%s\n", what, mesh.elementCount, 1e3 * building, each,
                limit, each > limit ? "  missed" : "");
    const std::size_t queries = queryCount * static_cast<std::size_t>(side_by_side::rounds);
    if (found > queries * 99 / 100) return each <= limit;
    std::printf("only %zu of %zu points were found\n", found, queries);
    return false;
}

} // namespace

int main() {
    std::printf("%-28s %10s %10s %14s %8s\n", "random points of the plan", "elements", "build, ms",
                "query, ns", "limit");
    const bool prisms = measure("prisms", false);
    const bool blocks = measure("blocks", true);
    return prisms && blocks ? EXIT_SUCCESS : EXIT_FAILURE;
}
