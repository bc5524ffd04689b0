#include "tvncommon/search/ElementSearch.hpp"

#include "tests/support/runs.hpp"
#include "tests/tvncommon/search/plan_mesh.hpp"

#include <functional>
#include <limits>
#include <sstream>
#include <utility>

namespace {

using namespace sample_files;
using namespace ElementSearch;
using plan_mesh::makeMesh;
using plan_mesh::Mesh;
using plan_mesh::MeshSize;

// Linear in every coordinate, so that the interpolation is exact.
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

    // Collects the messages of later calls, which then do not end the run.
    void collectMessages() {
        setErrorCallback([this](std::string_view text) { errors.emplace_back(text); });
        setWarnCallback([this](std::string_view text) { warnings.emplace_back(text); });
    }

    // Adds results and messages of a call: as an error, and with the fallback with and without a
    // warning.
    void add(const std::string& what, const std::function<double()>& call) {
        report << what << "\n";
        for (const auto& [fallback, warns] :
             {std::pair{false, true}, {true, true}, {true, false}}) {
            setNearestFallback(fallback);
            setWarnOnFallback(warns);
            EXPECT_FALSE(pointInElement3D(1, 0, 0, 9)); // no message, same settings afterwards
            report << "  " << call() << "\n";
            for (const std::string& text : std::exchange(errors, {})) report << text << "\n";
            for (const std::string& text : std::exchange(warnings, {}))
                report << "warning: " << text << "\n";
        }
    }

    Mesh mesh;
    std::vector<double> values;
    Texts errors, warnings;
    std::ostringstream report;
};

TEST_F(Search, FindsThePointsOfAllElements) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0.01, 0.99);
    for (const bool blocks : {false, true}) {
        use(makeMesh({.blocks = blocks, .layers = 4}, random()));
        const auto nodes = static_cast<std::size_t>(mesh.nodesPerElement);
        for (std::int32_t e = 1; e <= mesh.elementCount; ++e) {
            // A weighted mean of three corners of each face is inside.
            std::vector<double> xs(nodes), ys(nodes), zs(nodes);
            elementCoords3D(e, xs, ys, zs);
            std::vector<double> planX(nodes / 2), planY(nodes / 2);
            elementCoords2D(e, planX, planY);
            EXPECT_TRUE(std::ranges::equal(planX, std::span(xs).first(nodes / 2)));
            EXPECT_TRUE(std::ranges::equal(planY, std::span(ys).first(nodes / 2)));
            const double a = share(random), b = share(random) * (1 - a), c = 1 - a - b;
            const auto mean = [&](const std::vector<double>& of, std::size_t first = 0) {
                return a * of[first] + b * of[first + 1] + c * of[first + 2];
            };
            const double x = mean(xs), y = mean(ys), bottom = mean(zs), top = mean(zs, nodes / 2);
            const double z = bottom + share(random) * (top - bottom);
            const std::int32_t plan = (e - 1) % mesh.planElementCount + 1;
            const std::int32_t layer = (e - 1) / mesh.planElementCount + 1;
            EXPECT_EQ(findElement2D(x, y), plan);
            for (const std::int32_t hint : {plan, 1, 0, -7, 2147483647})
                EXPECT_EQ(findElement3D(x, y, z, hint), e) << hint;
            EXPECT_EQ(findElementByLayer(x, y, layer), e);
            EXPECT_TRUE(pointInElement3D(e, x, y, z));
            EXPECT_FALSE(pointInElement3D(e, x, y, bottom - 0.01));
            EXPECT_NEAR(interpElement3DNoIndex(x, y, z, values), plane(x, y, z), 1e-11);
            EXPECT_NEAR(interpElementTopIndex(e, x, y, values), plane(x, y, top), 1e-11);
            EXPECT_NEAR(interpElementBottomIndex(e, x, y, mesh.z), bottom, 1e-11);
            EXPECT_EQ(interpElement2DNoIndex(x, y, values),
                      interpElementBottomIndex(plan, x, y, values));
            EXPECT_EQ(interpElementTopNoIndex(x, y, values),
                      interpElementTopIndex(plan, x, y, values));
        }
    }
}

// Unit squares with z = 0.25 x - 0.5 y at the bottom, and layers with thickness 1, 1.5 or 2.
constexpr MeshSize square{.blocks = true, .columns = 2, .rows = 2, .layers = 2, .offset = 0};

TEST_F(Search, PointsOnFaces) {
    use(makeMesh(square, 1));
    // Above node 1 the layers have thickness 1.
    for (const auto& [z, element] :
         {std::pair{0.0, 1}, {0.5, 1}, {1.0, 1}, {1.0000001, 5}, {2.0, 5}}) {
        EXPECT_EQ(findElement3D(0, 0, z), element) << z;
        EXPECT_EQ(pointInElement3D(5, 0, 0, z), z >= 1) << z;
    }
    for (const double z : {-0.0000001, 2.0000001})
        EXPECT_NE(runs::endingOf([=] { findElement3D(0, 0, z); }), "") << z;
}

TEST_F(Search, PointsOutsideAndInvalidMeshesAreErrorsOrUseTheNearestElement) {
    use(makeMesh(square, 1));
    collectMessages();
    EXPECT_EQ(findElement2DUnchecked(-1, 0.5), 0);
    EXPECT_EQ(findNearestElement2D(1, 1), 1); // the first of four
    const std::array<double, 4> xs{0, 1, 1, 0}, ys{0, 0, 1, 1}, four{1, 2, 3, 4};
    const std::array<double, 3> xs3{0, 1, 1}, ys3{0, 0, 1}, three{1, 2, 3};
    EXPECT_EQ(interpQuad(xs, ys, four, 0.25, 0.5), 2.25); // divided from corner 1 to corner 3
    EXPECT_TRUE(pointInQuad2D(xs, ys, 0.25, 0.5));
    add("top", [&] { return interpElementTopNoIndex(-1, 0.5, values); });
    add("bottom", [&] { return interpElement2DNoIndex(-1, 0.5, values); });
    add("in plan", [] { return findElement2D(9, 1.8); });
    add("in plan, by layer", [] { return findElementByLayer(-3, 1.5, 2); });
    add("layer 3", [] { return findElementByLayer(0.3, 1.6, 3); });
    add("layer 0", [] { return findElementByLayer(0.3, 1.6, 0); });
    add("outside", [] { return findElement3D(-5, 0.1, 2); });
    add("below", [] { return findElement3D(1.5, 0.5, -9); });
    add("above", [] { return findElement3D(1.5, 0.5, 99); });
    add("below an element", [&] { return interpElement3DIndex(1, 0, 0, -9, values); });
    add("above an element", [&] { return interpElement3DIndex(1, 0, 0, 9, values); });
    add("triangle", [&] { return interpTriangle(xs3, ys3, three, 0, 2); });
    add("quadrilateral, right", [&] { return interpQuad(xs, ys, four, 5, 0.5); });
    add("quadrilateral, left", [&] { return interpQuad(xs, ys, four, -0.1, 5); });

    Mesh sheet = makeMesh({.columns = 1, .rows = 1}, 1);
    sheet.sheetCount = 1;
    use(sheet);
    add("mesh without layers", [] { return findElementByLayer(0.5, 0.4, 1); });
    EXPECT_NE(runs::endingOf([] { initElementSearch(1, 1, 7, 2, {}, {}, {}, {}); }), "");
    add("elements of seven nodes",
        [] { return pointInElement2D(1, 0, 0) + interpElement2DIndex(1, 0, 0, {}); });
    expectFile("element_search.txt", report.str());
}

TEST_F(Search, GeometryOfAnElement) {
    use(makeMesh({.blocks = false, .columns = 1, .rows = 1, .layers = 1, .offset = 0}, 3));
    EXPECT_EQ(elementAABB(1), (std::array<double, 6>{0, 0, -0.25, 1, 1, 1.75}));
    const auto bottom = elementCentroidBottom(1), top = elementCentroidTop(1);
    const auto whole = elementCentroid3D(1);
    for (const double x : {bottom[0], top[0], elementCentroid2D(1)[0]})
        EXPECT_NEAR(x, 2.0 / 3, 1e-15);
    EXPECT_NEAR(whole[2], (bottom[2] + top[2]) / 2, 1e-15);
    EXPECT_GT(top[2], bottom[2] + 0.9);
    const std::array<double, 3> xs{0, 4, 0}, ys{0, 0, 2};
    EXPECT_EQ(barycentricCoords(xs, ys, 1, 1), (std::array<double, 3>{0.25, 0.25, 0.5}));
}

TEST_F(Search, InvalidNumbersStayInsideTheArrays) {
    std::mt19937 random(4);
    collectMessages();
    const std::int32_t oddNodes[] = {0, -1, 1000000, 2147483647, -2147483647 - 1};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int round = 0; round < 12; ++round) {
        Mesh odd =
            makeMesh({.blocks = round % 2 == 0, .columns = 2, .rows = 2, .layers = 2}, random());
        for (int k = 0; k < 4; ++k)
            odd.elementNodes[random() % odd.elementNodes.size()] = oddNodes[random() % 5];
        odd.z[random() % odd.z.size()] = nan;
        odd.elementNodes[0] = oddNodes[random() % 5];
        use(odd);
        EXPECT_FALSE(pointInElement2D(1, 0.4, 0.7));
        setNearestFallback(round % 4 < 2);
        for (const double x : {-1.0, 0.4, 1.5})
            for (const double z : {-1.0, 0.5, 3.0, nan}) {
                const std::int32_t found = findElement3D(x, 0.7, z);
                EXPECT_TRUE(found >= 0 && found <= mesh.elementCount);
                interpElement3DNoIndex(x, 0.7, z, values);
                for (const std::int32_t element : oddNodes) {
                    EXPECT_FALSE(pointInElement2D(element, x, 0.7));
                    EXPECT_FALSE(pointInElement3D(element, x, 0.7, z));
                    interpElement3DIndex(element, x, 0.7, z, values);
                }
            }
    }
}

} // namespace
