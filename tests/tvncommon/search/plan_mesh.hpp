#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

// Layered meshes for the tests of the toolkit: nodes that stand a little off a square lattice with
// spacing 1, over them triangles or quadrilaterals of both windings, some left out, in layers of
// changing height.
namespace plan_mesh {

struct Mesh {
    std::int32_t nodesPerElement = 0;
    std::int32_t planElementCount = 0, elementCount = 0;
    std::int32_t sheetCount = 0;
    std::vector<double> x, y, z;
    std::vector<std::int32_t> elementNodes; // bottom face, then top face
};

struct Wishes {
    bool blocks = false;
    int columns = 6, rows = 5, layers = 1;
    double offset = 0.3; // of a node in plan, at most
    int holes = 0;       // one element in so many is left out
};

inline Mesh makeMesh(const Wishes& wishes, std::mt19937::result_type seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> offset(-wishes.offset, wishes.offset);
    Mesh mesh;
    mesh.nodesPerElement = wishes.blocks ? 8 : 6;
    mesh.sheetCount = wishes.layers + 1;
    for (int j = 0; j <= wishes.rows; ++j)
        for (int i = 0; i <= wishes.columns; ++i) {
            mesh.x.push_back(i + (wishes.offset > 0 ? offset(random) : 0));
            mesh.y.push_back(j + (wishes.offset > 0 ? offset(random) : 0));
            mesh.z.push_back(0.25 * i - 0.5 * j);
        }
    const auto sheet = static_cast<std::int32_t>(mesh.x.size());
    std::vector<std::vector<std::int32_t>> plan;
    for (int j = 0; j < wishes.rows; ++j)
        for (int i = 0; i < wishes.columns; ++i) {
            const std::int32_t a = j * (wishes.columns + 1) + i + 1, d = a + wishes.columns + 1;
            const bool turned = random() % 2 == 0;
            std::vector<std::vector<std::int32_t>> parts{{a, a + 1, d + 1, d}};
            if (!wishes.blocks) parts = {{a, a + 1, d + 1}, {a, d + 1, d}};
            for (std::vector<std::int32_t>& corners : parts) {
                if (wishes.holes > 0 && random() % static_cast<unsigned>(wishes.holes) == 0)
                    continue;
                if (turned) std::ranges::reverse(corners);
                plan.push_back(corners);
            }
        }
    mesh.planElementCount = static_cast<std::int32_t>(plan.size());
    mesh.elementCount = mesh.planElementCount * wishes.layers;
    for (int layer = 1; layer <= wishes.layers; ++layer) {
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
