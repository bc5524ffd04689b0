#include "tests/support/sample_files.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace sample_files;

TEST(LocateInMesh, ElementsAndHeadsOfAProblem) {
    const Folder folder;
    const Grid grid{.nx = 2, .ny = 1, .layers = 2};
    Problem problem = brickProblem(grid);
    Reals heads;
    for (const double z : {0, 1, 3})
        for (const double y : {0, 1})
            for (const double x : {0, 1, 2}) heads.push_back(x + 10 * y + 100 * z);
    problem["to.head_pm.0001"] = resultFile("0.0", {heads});
    write(problem);
    put("points", "0.25 0.5 0.5\n1.5 0.75 2 1.5 0.75 3\n0.5 0.5 3.1\n3 0.5 1\n0.5 0.5 -1\n");
    const std::string program = LOCATE_IN_MESH_PROGRAM;
    EXPECT_EQ(std::system((program + " t 0001 <points >found").c_str()), 0);
    expectFile("located.txt", get("found"));
    EXPECT_NE(std::system((program + " t 0002 <points >found 2>errors").c_str()), 0);
    EXPECT_NE(get("errors").find("Failed to open file: to.head_pm.0002"), Bytes::npos);
}

// Because of rounding a point on an edge can be in the element and in neither of its triangles.
TEST(LocateInMesh, ReportsPointsWithoutInterpolation) {
    const Folder folder;
    Problem problem = brickProblem({.nx = 1, .ny = 1, .layers = 1});
    Reals coordinates;
    for (const double z : {0, 1})
        for (const double y : {0.0, 1.7})
            for (const double x : {0.0, 0.1}) coordinates.insert(coordinates.end(), {x, y, z});
    problem["to.coordinates_pm"] = integerRecord({8}) + realRecord(coordinates);
    write(problem);
    put("points", "0.1 0.17 0.5\n0.1 0.17 0\n0.05 0.17 0.5\n");
    const std::string program = LOCATE_IN_MESH_PROGRAM;
    EXPECT_EQ(std::system((program + " t 0001 <points >found").c_str()), 0);
    EXPECT_EQ(get("found"), "interpQuad: point outside quad\ninterpQuad: point outside quad\n"
                            "element 1 in layer 1, head 0.5\n");
}

} // namespace
