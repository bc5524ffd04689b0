#include "meshrake/derived_columns/depth_to_groundwater.hpp"

#include "tests/support/runs.hpp"

#include <bit>
#include <limits>
#include <random>

namespace {

using namespace depth_to_groundwater;
using Values = std::vector<double>;

const double nan = std::numeric_limits<double>::quiet_NaN();

// Returns the bits of each value; all NaN give the same.
std::vector<std::uint64_t> bitsOf(const Values& values) {
    std::vector<std::uint64_t> bits;
    for (const double v : values) bits.push_back(v != v ? 1 : std::bit_cast<std::uint64_t>(v));
    return bits;
}

// A column of nodes with sheets at a distance of 10, values from the bottom up.
struct Column {
    const char* what;
    Values pressureHead, depth, interpolated;
    double depth2d, interpolated2d;
};

TEST(DepthToGroundwater, ColumnsComputedByHand) {
    const Column columns[] = {
        {"unsaturated", {-1, -2, -3, -4}, {1, 11, 21, 31}, {1, 11, 21, 31}, 31, 31},
        {"unequal slopes", {20, 6, -2, -9}, {-16, -6, 4, 14}, {-17.5, -7.5, 2.5, 12.5}, 14, 12.5},
        {"zero is saturated", {0, 0, -1, -1}, {-10, 0, 10, 20}, {-10, 0, 10, 20}, 20, 20},
        {"perched zone", {2, -2, 6, -2}, {-2, 8, -6, 4}, {-5, 5, -7.5, 2.5}, 28, 25},
        {"perched over a dry bottom", {-1, -3, 4, 1}, {1, 11, -11, -1}, {1, 11, -11, -1}, 0, 0},
        {"NaN, dry top", {5, nan, -1, -1}, {nan, nan, 15, 25}, {nan, nan, nan, nan}, 25, 25},
        {"NaN, wet top", {5, nan, 1, 1}, {-31, -21, -11, -1}, {-31, -21, -11, -1}, 0, 0},
        {"NaN at the top", {-5, -1, -1, nan}, {5, 15, 25, nan}, {5, 15, 25, nan}, 0, 0},
        {"one sheet, unsaturated", {-3}, {3}, {3}, 0, 0}};
    for (const Column& column : columns) {
        SCOPED_TRACE(column.what);
        Values z, head, depth(column.pressureHead.size(), 99);
        for (const double pressureHead : column.pressureHead) {
            z.push_back(10.0 * static_cast<double>(z.size()));
            head.push_back(z.back() + pressureHead);
        }
        const auto n = static_cast<std::int32_t>(z.size());
        for (const bool interpolate : {false, true}) {
            const double depth2d = interpolate ? column.interpolated2d : column.depth2d;
            depth2gwtDomain(n, n, interpolate, z, head, depth);
            EXPECT_EQ(bitsOf(depth), bitsOf(interpolate ? column.interpolated : column.depth));
            depth2gwt2dDomain(n, n, interpolate, z, head, depth);
            EXPECT_EQ(depth, Values(z.size(), depth2d));
        }
    }
}

// In this column any other order of the operations gives another last digit.
TEST(DepthToGroundwater, InterpolatesInAFixedOrderOfOperations) {
    const Values z{0, 4.7, 7.7}, head{1.3, 0.5, 0.5};
    Values depth(3);
    depth2gwtDomain(3, 3, true, z, head, depth);
    EXPECT_EQ(depth, (Values{-1.1109090909090908, 3.5890909090909093, 6.58909090909091}));
    depth2gwt2dDomain(3, 3, true, z, head, depth);
    EXPECT_EQ(depth, Values(3, 6.58909090909091));
}

// The sweeps over whole sheets must give the same bits as a search from each node, also if nodes
// follow the top sheet.
TEST(DepthToGroundwater, SweepsEqualSearchesFromEachNode) {
    std::mt19937 random(5);
    const auto below = [&](int limit) {
        return std::uniform_int_distribution(0, limit - 1)(random);
    };
    std::uniform_real_distribution<double> anyReal(-3, 3);
    for (int round = 0; round < 400; ++round) {
        const int sheetCount = 1 + below(9), sheetNodes = 1 + below(7);
        const int nodeCount = sheetCount * sheetNodes + below(sheetCount);
        Values z, head, pressureHead;
        for (int i = 0; i < nodeCount; ++i) {
            const int kind = below(12);
            z.push_back(2.0 * i / sheetNodes + anyReal(random));
            head.push_back(kind == 0 ? nan : kind < 3 ? z.back() : z.back() + anyReal(random));
            pressureHead.push_back(head.back() - z.back());
        }
        for (const bool interpolate : {false, true}) {
            Values depth(z.size(), 99), depth2d(z.size(), 99), found(z.size()), found2d(z.size());
            depth2gwtDomain(nodeCount, sheetCount, interpolate, z, head, depth);
            depth2gwt2dDomain(nodeCount, sheetCount, interpolate, z, head, depth2d);
            for (int node = 1; node <= nodeCount; ++node) {
                const auto i = static_cast<std::size_t>(node - 1);
                double table = 0;
                depth2gwtNode(node, nodeCount, sheetCount, interpolate, z, pressureHead, found[i],
                              table);
                if (node > sheetCount * sheetNodes) continue;
                depth2gwtNodeBottomUp(node, nodeCount, sheetCount, interpolate, z, pressureHead,
                                      found2d[i], table);
            }
            ASSERT_EQ(bitsOf(depth), bitsOf(found));
            ASSERT_EQ(bitsOf(depth2d), bitsOf(found2d));
        }
    }
}

TEST(DepthToGroundwater, WrongSheetCountsEndTheRun) {
    Values depth(3);
    depth2gwtDomain(0, 0, true, depth, depth, depth); // a mesh without nodes
    depth2gwt2dDomain(0, 0, true, depth, depth, depth);
    for (const std::int32_t sheetCount : {0, -1, 4, 2147483647, -2147483647 - 1}) {
        for (const auto& compute : {depth2gwtDomain, depth2gwt2dDomain})
            EXPECT_THAT(runs::endingOf([&] { compute(3, sheetCount, true, depth, depth, depth); }),
                        testing::HasSubstr("division by zero"));
    }
}

} // namespace
