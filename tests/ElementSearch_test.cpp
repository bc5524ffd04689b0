#include "tvncommon/ElementSearch.hpp"

#include "tests/plan_mesh.hpp"
#include "tvncommon/error.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace ElementSearch;
using plan_mesh::makeMesh;
using plan_mesh::Mesh;
using plan_mesh::Wishes;

// Linear in every coordinate, so that interpolation in prisms with level faces is exact.
double plane(double x, double y, double z) {
    return 3 * x - 2 * y + 5 * z;
}

class Search : public testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    void use(Mesh made) {
        mesh = std::move(made);
        initElementSearch(mesh.elementCount, mesh.planElementCount, mesh.nodesPerElement,
                          mesh.sheetCount, mesh.elementNodes, mesh.x, mesh.y, mesh.z);
        values.clear();
        for (std::size_t i = 0; i < mesh.x.size(); ++i)
            values.push_back(plane(mesh.x[i], mesh.y[i], mesh.z[i]));
    }

    // Messages go into lists from here on instead of ending the run.
    void listen() {
        setErrorCallback([this](std::string_view text) { errors.emplace_back(text); });
        setWarnCallback([this](std::string_view text) { warnings.emplace_back(text); });
    }

    void expectMessages(const std::vector<std::string>& expectedErrors,
                        const std::vector<std::string>& expectedWarnings) {
        EXPECT_EQ(errors, expectedErrors);
        EXPECT_EQ(warnings, expectedWarnings);
        errors.clear();
        warnings.clear();
    }

    Mesh mesh;
    std::vector<double> values;
    std::vector<std::string> errors, warnings;
};

TEST_F(Search, FindsThePointsOfAllElements) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0.01, 1);
    for (const bool blocks : {false, true}) {
        use(makeMesh({.blocks = blocks, .layers = 4}, random()));
        const auto nodes = static_cast<std::size_t>(mesh.nodesPerElement);
        for (std::int32_t e = 1; e <= mesh.elementCount; ++e) {
            // A mean of three corners of each face lies inside, whatever the weights.
            std::vector<double> xs(nodes), ys(nodes), zs(nodes);
            elementCoords3D(e, xs, ys, zs);
            double x = 0, y = 0, bottom = 0, top = 0, sum = 0;
            for (std::size_t k = 0; k < 3; ++k) {
                const double weight = share(random);
                x += weight * xs[k];
                y += weight * ys[k];
                bottom += weight * zs[k];
                top += weight * zs[nodes / 2 + k];
                sum += weight;
            }
            x /= sum;
            y /= sum;
            const double up = share(random) * 0.98;
            const double z = (bottom + up * (top - bottom)) / sum;
            const std::int32_t plan = (e - 1) % mesh.planElementCount + 1;
            const std::int32_t layer = (e - 1) / mesh.planElementCount + 1;
            EXPECT_EQ(findElement2D(x, y), plan);
            for (const std::int32_t hint : {plan, 1, 0, -7, 2147483647})
                EXPECT_EQ(findElement3D(x, y, z, hint), e) << hint;
            EXPECT_EQ(findElementByLayer(x, y, layer), e);
            EXPECT_TRUE(pointInElement3D(e, x, y, z));
            EXPECT_FALSE(pointInElement3D(e, x, y, bottom / sum - 0.01));
            EXPECT_NEAR(interpElement3DNoIndex(x, y, z, values), plane(x, y, z), 1e-11);
            EXPECT_NEAR(interpElementTopIndex(e, x, y, values), plane(x, y, top / sum), 1e-11);
            EXPECT_NEAR(interpElementBottomIndex(e, x, y, mesh.z), bottom / sum, 1e-11);
            EXPECT_EQ(interpElement2DNoIndex(x, y, values),
                      interpElementBottomIndex(plan, x, y, values));
            EXPECT_EQ(interpElementTopNoIndex(x, y, values),
                      interpElementTopIndex(plan, x, y, values));
        }
    }
}

// Unit squares with z = 0.25 x - 0.5 y at the bottom; the layers are 1, 1.5 or 2 high.
constexpr Wishes square{.blocks = true, .columns = 2, .rows = 2, .layers = 2, .offset = 0};

TEST_F(Search, PointsOnFaces) {
    use(makeMesh(square, 1));
    // Over node 1, whose layers are 1 high.
    struct Case {
        double z;
        std::int32_t element;
    };
    for (const Case& c : {Case{0, 1}, Case{0.5, 1}, Case{1, 1}, Case{1.0000001, 5}, Case{2, 5}}) {
        EXPECT_EQ(findElement3D(0, 0, c.z), c.element) << c.z;
        EXPECT_EQ(pointInElement3D(5, 0, 0, c.z), c.z >= 1) << c.z;
    }
    for (const double z : {-0.0000001, 2.0000001})
        EXPECT_THROW(findElement3D(0, 0, z), error::RunEnded) << z;
}

std::string at(const std::string& text, const char* place) {
    return text + "\npoint: " + place;
}

TEST_F(Search, PointsOutsideAreErrors) {
    use(makeMesh(square, 1));
    listen();
    const char* outside = "-1.0000000000000000, 0.50000000000000000";
    const auto place3 = [](const char* x, const char* z) {
        return std::string(x) + ", 0.0000000000000000, " + z;
    };
    EXPECT_EQ(findElement2D(-1, 0.5), 0);
    EXPECT_EQ(findElementByLayer(-1, 0.5, 1), 0);
    EXPECT_EQ(findElement2DUnchecked(-1, 0.5), 0);
    expectMessages({at("findElement2D: point outside mesh", outside),
                    at("findElementByLayer: point outside mesh", outside)},
                   {});
    EXPECT_EQ(findElement3D(-1, 0, 0), 0);
    EXPECT_EQ(findElement3D(0, 0, -2), 0);
    EXPECT_EQ(findElement3D(0, 0, 9), 0);
    const auto three = [&](const std::string& text, const char* x, const char* z) {
        return at(text, place3(x, z).c_str());
    };
    const char* zero = "0.0000000000000000";
    expectMessages({three("findElement3D: point outside mesh", "-1.0000000000000000", zero),
                    three("findElement3D: point below mesh", zero, "-2.0000000000000000"),
                    three("findElement3D: point above mesh", zero, "9.0000000000000000")},
                   {});
    EXPECT_EQ(findElementByLayer(0, 0, 3), 0);
    EXPECT_EQ(findElementByLayer(0, 0, 0), 0);
    expectMessages({"findElementByLayer: layer outside range\nlayer: 3, expected: 1,2",
                    "findElementByLayer: layer outside range\nlayer: 0, expected: 1,2"},
                   {});
    EXPECT_EQ(interpElement3DIndex(1, 0, 0, -2, values), 0);
    EXPECT_EQ(interpElement3DIndex(1, 0, 0, 9, values), 5);
    expectMessages({three("interpElement: point below element", zero, "-2.0000000000000000"),
                    three("interpElement: point above element", zero, "9.0000000000000000")},
                   {});
    const std::array<double, 4> xs{0, 1, 1, 0}, ys{0, 0, 1, 1}, four{1, 2, 3, 4};
    const std::array<double, 3> three3{0, 1, 0}, threeY{0, 0, 1}, three1{1, 2, 3};
    EXPECT_EQ(interpTriangle(three3, threeY, three1, 1, 1), 0);
    EXPECT_EQ(interpQuad(xs, ys, four, 2, 0), 0);
    expectMessages(
        {at("interpTriangle: point outside triangle", "1.0000000000000000, 1.0000000000000000"),
         at("interpQuad: point outside quad", "2.0000000000000000, 0.0000000000000000")},
        {});
}

TEST_F(Search, PointsOutsideAreMovedOnDemand) {
    use(makeMesh(square, 1));
    listen();
    setNearestFallback(true);
    const std::array<double, 4> xs{0, 1, 1, 0}, ys{0, 0, 1, 1}, four{1, 2, 3, 4};
    const auto askAll = [&] {
        EXPECT_EQ(findElement2D(9, 1.8), 4);
        EXPECT_EQ(findElement3D(-5, 0.1, 2), 5);
        EXPECT_EQ(findElement3D(1.5, 0.5, -9), 2);
        EXPECT_EQ(findElement3D(1.5, 0.5, 99), 6);
        EXPECT_EQ(findElementByLayer(0.3, 1.6, 7), 7);
        EXPECT_EQ(findElementByLayer(-3, 1.5, -7), 3);
        EXPECT_EQ(interpElement3DIndex(1, 0, 0, -9, values), 0);
        EXPECT_EQ(interpElement3DIndex(1, 0, 0, 9, values), 5);
        EXPECT_EQ(interpQuad(xs, ys, four, 5, 0.5), 2); // two corners are as near
        EXPECT_EQ(interpQuad(xs, ys, four, -0.1, 5), 4);
    };
    askAll();
    std::vector<std::string> kinds;
    for (const std::string& warning : warnings)
        kinds.push_back(warning.substr(0, warning.find('\n')));
    const std::string nearest = ": using nearest element";
    EXPECT_EQ(kinds, (std::vector<std::string>{
                         "findElement2D: point outside mesh" + nearest,
                         "findElement3D: point outside mesh" + nearest,
                         "findElement3D: point below mesh" + nearest,
                         "findElement3D: point above mesh" + nearest,
                         "findElementByLayer: layer outside range: using nearest layer",
                         "findElementByLayer: layer outside range: using nearest layer",
                         "findElementByLayer: point outside mesh" + nearest,
                         "interpElement: point below element: interpolating to bottom",
                         "interpElement: point above element: interpolating to top",
                         "interpQuad: point outside quad: using value of nearest vertex",
                         "interpQuad: point outside quad: using value of nearest vertex"}));
    EXPECT_EQ(errors, std::vector<std::string>());
    warnings.clear();
    setWarnOnFallback(false);
    askAll();
    expectMessages({}, {});
}

TEST_F(Search, TheInsideTestPutsTheSettingsBack) {
    use(makeMesh(square, 1));
    listen();
    EXPECT_FALSE(pointInElement3D(1, 0, 0, 9));
    expectMessages({}, {});
    findElement2D(-9, 0);
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(Search, GeometryOfAnElement) {
    use(makeMesh({.blocks = false, .columns = 1, .rows = 1, .layers = 1, .offset = 0}, 3));
    const std::array<double, 6> box = elementAABB(1);
    EXPECT_EQ(box, (std::array<double, 6>{0, 0, -0.25, 1, 1, 1.75}));
    const auto bottom = elementCentroidBottom(1), top = elementCentroidTop(1);
    const auto whole = elementCentroid3D(1);
    EXPECT_NEAR(bottom[0], 2.0 / 3, 1e-15);
    EXPECT_NEAR(top[0], 2.0 / 3, 1e-15);
    EXPECT_NEAR(whole[2], (bottom[2] + top[2]) / 2, 1e-15);
    EXPECT_GT(top[2], bottom[2] + 0.9);
    EXPECT_EQ(elementCentroid2D(1), (std::array<double, 2>{whole[0], whole[1]}));
    const std::array<double, 3> xs{0, 4, 0}, ys{0, 0, 2};
    EXPECT_EQ(barycentricCoords(xs, ys, 1, 1), (std::array<double, 3>{0.25, 0.25, 0.5}));
}

TEST_F(Search, OddNumbersStayInsideTheArrays) {
    std::mt19937 random(4);
    listen();
    const std::int32_t oddNodes[] = {0, -1, 1000000, 2147483647, -2147483647 - 1};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int round = 0; round < 12; ++round) {
        Mesh odd =
            makeMesh({.blocks = round % 2 == 0, .columns = 2, .rows = 2, .layers = 2}, random());
        for (int k = 0; k < 4; ++k)
            odd.elementNodes[random() % odd.elementNodes.size()] = oddNodes[random() % 5];
        odd.z[random() % odd.z.size()] = nan;
        use(odd);
        setNearestFallback(round % 4 < 2);
        for (const double x : {-1.0, 0.4, 1.5})
            for (const double z : {-1.0, 0.5, 3.0, nan}) {
                const std::int32_t found = findElement3D(x, 0.7, z);
                EXPECT_TRUE(found >= 0 && found <= mesh.elementCount);
                interpElement3DNoIndex(x, 0.7, z, values);
                for (const std::int32_t element : oddNodes) {
                    EXPECT_FALSE(pointInElement3D(element, x, 0.7, z));
                    interpElement3DIndex(element, x, 0.7, z, values);
                }
            }
    }
}

TEST_F(Search, OneSheetHasNoLayers) {
    Mesh sheet = makeMesh({.columns = 1, .rows = 1}, 1);
    sheet.sheetCount = 1;
    use(sheet);
    listen();
    EXPECT_EQ(findElementByLayer(0.5, 0.4, 1), 0);
    expectMessages({"findElementByLayer: layer outside range\nlayer: 1, expected: 1,0"}, {});
}

TEST_F(Search, OtherElementsAreRefused) {
    testing::internal::CaptureStderr();
    EXPECT_THROW(initElementSearch(1, 1, 7, 2, {}, {}, {}, {}), error::RunEnded);
    testing::internal::GetCapturedStderr();
    listen();
    EXPECT_FALSE(pointInElement2D(1, 0, 0));
    EXPECT_EQ(interpElement2DIndex(1, 0, 0, {}), 0);
    expectMessages({"pointInElement2D: expected triangular prism or block elements",
                    "interpElementBottom: expected triangular prism or block elements"},
                   {});
}

} // namespace
