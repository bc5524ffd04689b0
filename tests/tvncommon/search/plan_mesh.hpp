#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

// Layered meshes for the tests of the toolkit: nodes near a square lattice of spacing 1, and
// triangles or quadrilaterals with clockwise or counterclockwise corners, in layers of varying
// thickness.
namespace plan_mesh {

struct Mesh {
    std::int32_t nodesPerElement = 0;
    std::int32_t planElementCount = 0, elementCount = 0;
    std::int32_t sheetCount = 0;
    std::vector<double> x, y, z;
    std::vector<std::int32_t> elementNodes; // bottom face, then top face
};

struct MeshSize {
    bool blocks = false;
    int columns = 6, rows = 5, layers = 1;
    double offset = 0.3; // of a node in plan, at most
    int holes = 0;       // one of this number of plan elements is omitted; 0: none
};

inline Mesh makeMesh(const MeshSize& size, std::mt19937::result_type seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> offset(-size.offset, size.offset);
    Mesh mesh;
    mesh.nodesPerElement = size.blocks ? 8 : 6;
    mesh.sheetCount = size.layers + 1;
    for (int j = 0; j <= size.rows; ++j)
        for (int i = 0; i <= size.columns; ++i) {
            mesh.x.push_back(i + (size.offset > 0 ? offset(random) : 0));
            mesh.y.push_back(j + (size.offset > 0 ? offset(random) : 0));
            mesh.z.push_back(0.25 * i - 0.5 * j);
        }
    const auto sheet = static_cast<std::int32_t>(mesh.x.size());
    std::vector<std::vector<std::int32_t>> plan;
    for (int j = 0; j < size.rows; ++j)
        for (int i = 0; i < size.columns; ++i) {
            const std::int32_t a = j * (size.columns + 1) + i + 1, d = a + size.columns + 1;
            const bool turned = random() % 2 == 0;
            std::vector<std::vector<std::int32_t>> parts{{a, a + 1, d + 1, d}};
            if (!size.blocks) parts = {{a, a + 1, d + 1}, {a, d + 1, d}};
            for (std::vector<std::int32_t>& corners : parts) {
                if (size.holes > 0 && random() % static_cast<unsigned>(size.holes) == 0) continue;
                if (turned) std::ranges::reverse(corners);
                plan.push_back(corners);
            }
        }
    mesh.planElementCount = static_cast<std::int32_t>(plan.size());
    mesh.elementCount = mesh.planElementCount * size.layers;
    for (int layer = 1; layer <= size.layers; ++layer) {
        for (std::int32_t i = 0; i < sheet; ++i) {
            const auto below = static_cast<std::size_t>(sheet * (layer - 1) + i);
            mesh.x.push_back(mesh.x[below]);
            mesh.y.push_back(mesh.y[below]);
            mesh.z.push_back(mesh.z[below] + 1 + 0.5 * (i % 3));
        }
        for (const std::vector<std::int32_t>& corners : plan)
            for (const int face : {layer - 1, layer})
                for (const std::int32_t node : corners)
                    mesh.elementNodes.push_back(node + face * sheet);
    }
    return mesh;
}

} // namespace plan_mesh
