#include "meshrake/observation_compare/shape_functions.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double untouched = 9, infinite = std::numeric_limits<double>::infinity();

TEST(ShapeFunctions, LocalCoordinatesOfOneElement) {
    struct Case {
        std::int32_t type, dimensions;
        std::array<double, 3> point, low, high, rst;
        bool outside;
    };
    const Case cases[] = {
        {128, 3, {1, 2, 3}, {0, 0, 0}, {2, 8, 3}, {0, -0.5, 1}, false},
        {128, 3, {2.00004, 0, 0}, {0, 0, 0}, {2, 8, 3}, {1.00004, -1, -1}, false},
        {128, 3, {2.0002, 0, 0}, {0, 0, 0}, {2, 8, 3}, {1.0002, -1, -1}, true},
        {128, 2, {1, 2, 99}, {0, 0, 0}, {2, 8, 3}, {0, -0.5, untouched}, false},
        // A flat box sets fewer entries; those that it does not set are also tested.
        {128, 3, {1, 5, 3}, {0, 5, 0}, {2, 5, 4}, {0, 0.5, untouched}, true},
        {128, 3, {1, 0, 0}, {0, 0, -infinite}, {2, 8, infinite}, {0, -1, 0}, false},
        {64, 3, {1, 2, 3}, {0, 0, 0}, {2, 8, 3}, {untouched, untouched, untouched}, false}};
    for (const Case& c : cases) {
        std::array<double, 3> rst{untouched, untouched, untouched};
        bool outside = true;
        observation_compare::get_rst_from_xyz(c.type, c.dimensions, c.point, c.low, c.high, rst,
                                              outside);
        for (std::size_t a = 0; a < 3; ++a) EXPECT_NEAR(rst[a], c.rst[a], 1e-9);
        EXPECT_EQ(outside, c.outside) << c.point[0];
    }
}

// The corners are anticlockwise on the lower face, then on the upper face.
TEST(ShapeFunctions, EachIsOneAtItsCorner) {
    constexpr double corners[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                      {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
    for (std::size_t k = 0; k < 8; ++k) {
        observation_compare::Shape shape, expected{};
        observation_compare::br8shp(0, corners[k], shape);
        expected[k] = 1;
        EXPECT_EQ(shape, expected) << k;
    }
}

} // namespace
