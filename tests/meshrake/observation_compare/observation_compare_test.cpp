#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/element_search.hpp"
#include "meshrake/observation_compare/node_search.hpp"
#include "meshrake/observation_compare/observation_files.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace sample_files;
using namespace runs;
using box_tree::Point;
using model::Domain;
using observation_compare::LocalPoint;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Random {
    std::mt19937 source;
    int below(int n) { return static_cast<int>(source() % static_cast<unsigned>(n)); }
    double part() { return below(1 << 20) / static_cast<double>(1 << 20); }
};

void addNode(Domain& mesh, const Point& p) {
    mesh.x.push_back(p[0]);
    mesh.y.push_back(p[1]);
    mesh.z.push_back(p[2]);
    mesh.nodeCount = static_cast<std::int32_t>(mesh.x.size());
}

// Few different values give shared faces, equal distances and elements without extent.
double someValue(Random& random, int kind) {
    static constexpr double odd[] = {infinity, -infinity, notANumber, 1e308,       -1e308,
                                     1e200,    1e-310,    5e-324,     6.3e6 + 1e-9};
    if (kind < 2) return random.below(4) + kind * random.part();
    if (kind == 2)
        return 4194304 + (random.below(9) - 5) * 0x1p-31; // doubles on both sides of 2^22
    return random.below(10) == 0 ? odd[random.below(9)] : random.below(3);
}

Point somePoint(Random& random, int kind) {
    if (kind < 4)
        return {someValue(random, kind), someValue(random, kind), someValue(random, kind)};
    // Points at nearly the same distance from the origin, with different squares and equal roots.
    const Point p{random.part() - 0.5, random.part() - 0.5, random.part() - 0.5};
    const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]) + 1e-300;
    return {p[0] / length, p[1] / length, p[2] / length};
}

// The loop over all elements that the search must be equal to.
std::int32_t plainFind(const Domain& mesh, const Point& p, LocalPoint& rst) {
    for (std::int32_t e = 0; e < mesh.elementCount; ++e) {
        const auto [low, high] = observation_compare::elementBox(mesh, std::size_t(e));
        std::size_t n = 0;
        for (std::size_t a = 0; a < 3; ++a) {
            const double span = high[a] - low[a];
            if (span == 0) continue;
            const double v = (2 * p[a] - high[a] - low[a]) / span;
            rst[n++] = v != v ? 0 : v;
        }
        if (std::ranges::all_of(rst, [](double v) { return std::abs(v) <= 1.00005; })) return e + 1;
    }
    return 0;
}

// Returns skewed and overlapping elements, half of them small or flat, with some unused slots.
Domain randomElements(Random& random, int kind) {
    Domain mesh;
    mesh.nodesPerElement = random.below(4) == 0 ? 6 : 8;
    mesh.elementCount = 1 + random.below(150);
    for (int i = 0; i < 8 + mesh.elementCount; ++i) addNode(mesh, somePoint(random, kind));
    for (int e = 0; e < mesh.elementCount; ++e) {
        const int first = random.below(mesh.nodeCount);
        const int range = e % 2 == 0 ? 1 + random.below(4) : mesh.nodeCount;
        for (int k = 0; k < mesh.nodesPerElement; ++k) {
            const bool unused = e % 2 == 1 && random.below(9) == 0;
            mesh.elementNodes.push_back(
                unused ? 0 : 1 + (first + random.below(range)) % mesh.nodeCount);
        }
    }
    return mesh;
}

// Returns a point anywhere, on a node, or near a face, on both sides of the tolerance.
Point pointNear(const Domain& mesh, Random& random, int kind) {
    const int where = random.below(3);
    if (where == 0) return somePoint(random, kind);
    if (where == 1) return observation_compare::position(mesh, 1 + random.below(mesh.nodeCount));
    const auto [low, high] =
        observation_compare::elementBox(mesh, std::size_t(random.below(mesh.elementCount)));
    Point p;
    for (std::size_t a = 0; a < 3; ++a) {
        static constexpr double local[] = {0, 0.3, 1, -1, 1.00004, 1.00005, 1.00006, -1.00006};
        p[a] = (low[a] + high[a] + local[random.below(8)] * (high[a] - low[a])) / 2;
    }
    return p;
}

TEST(ElementSearch, EqualsTheLoopOverAllElements) {
    Random random;
    int found = 0, partial = 0, always = 0;
    for (int round = 0; round < 400; ++round) {
        const Domain mesh = randomElements(random, round % 4);
        observation_compare::ElementSearch search;
        prepare(search, mesh);
        partial += !search.partial.empty();
        always += !search.always.empty();
        LocalPoint rst{};
        for (int i = 0; i < 450; ++i) {
            const Point p = pointNear(mesh, random, round % 4);
            const std::int32_t expected = plainFind(mesh, p, rst);
            ASSERT_EQ(containingElement(search, p), expected) << "round " << round;
            ASSERT_EQ(search.rst, rst) << "round " << round;
            found += expected > 0;
        }
    }
    EXPECT_GT(found, 10000);
    EXPECT_GT(partial, 100);
    EXPECT_GT(always, 50);
}

std::int32_t plainNearest(const Domain& mesh, std::int32_t count, bool inPlan, const Point& p) {
    double best = 1e20;
    std::int32_t node = 0;
    for (std::size_t i = 0; i < std::size_t(count); ++i) {
        const double dx = mesh.x[i] - p[0], dy = mesh.y[i] - p[1], dz = mesh.z[i] - p[2];
        const double distance = std::sqrt(inPlan ? dx * dx + dy * dy : dx * dx + dy * dy + dz * dz);
        if (!(distance < best)) continue;
        best = distance;
        node = std::int32_t(i + 1);
    }
    return node;
}

TEST(NodeSearch, EqualsTheLoopOverAllNodes) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const int kind = round % 5;
        Domain mesh, points; // only for its coordinates
        for (int i = random.below(round % 7 == 0 ? 20 : 600); i > 0; --i)
            addNode(mesh, somePoint(random, kind));
        for (int i = 0; i < 60; ++i) {
            Point p = kind == 4 ? Point{} : somePoint(random, kind);
            if (i % 3 == 0) p[random.source() % 3] += 0.5; // between the nodes of a lattice
            addNode(points, p);
        }
        const bool inPlan = round % 2 == 1;
        const std::int32_t count = round % 3 == 0 ? mesh.nodeCount / 2 : mesh.nodeCount;
        const auto found = observation_compare::nearestNodes(
            {.domain = mesh, .count = count, .inPlan = inPlan}, points.x, points.y, points.z);
        for (std::size_t i = 0; i < found.size(); ++i)
            ASSERT_EQ(found[i],
                      plainNearest(mesh, count, inPlan, {points.x[i], points.y[i], points.z[i]}))
                << "round " << round << ", point " << i;
    }
}

TEST(NodeSearch, ReturnsTheFirstOfEqualTops) {
    model::run.sheetCount = 3;
    Domain mesh;
    for (const double z : {5.0, 1.0, -1e10, 5.0, 2.0, -2e10, 4.0, 3.0, notANumber})
        addNode(mesh, {0, 0, z});
    EXPECT_EQ(observation_compare::columnTops(mesh), (Integers{1, 8, 0}));
}

std::string fixedField(double value, int width, int decimals) {
    std::string field(std::size_t(width), '?');
    EXPECT_EQ(number_formats::writeFixedField(value, width, decimals, field.data()),
              field.data() + width);
    return field;
}

TEST(NarrowFields, AreRoundedBeforeTheirNotationIsSelected) {
    EXPECT_EQ(fixedField(0.015625, 10, 5), "   0.01562"); // a tie is rounded to the even digit
    EXPECT_EQ(fixedField(-1e-9, 8, 4), " -0.0000");
    EXPECT_EQ(fixedField(0.5, 5, 4), ".5000"); // one column too narrow for the zero
    EXPECT_EQ(fixedField(-99999.99996, 10, 4), "**********");
    EXPECT_EQ(fixedField(-infinity, 10, 4), " -Infinity");
    EXPECT_EQ(fixedField(1e16, 19, 0), " 10000000000000000.");
    EXPECT_EQ(fixedField(0.5, 3, 0), " 0.");
    EXPECT_EQ(fixedField(-4503599627370497.0, 18, 0), "-4503599627370497."); // no bit to round off
    Random random;
    for (int i = 0; i < 200000; ++i) {
        const double value = std::ldexp(random.part() - 0.5, random.below(80) - 40);
        char expected[64];
        const int width = std::snprintf(expected, sizeof expected, "%17.5f", value);
        ASSERT_EQ(fixedField(value, 17, 5), width == 17 ? expected : std::string(17, '*'));
    }
    const std::pair<double, const char*> general[] = {
        {0, "  0.0000000000    "},    {0.0999999999999, " 0.10000000000    "},
        {0.08, " 0.80000000000E-01"}, {99999999999.4, "  99999999999.    "},
        {1e11, " 0.10000000000E+12"}, {-1e-120, "-0.10000000000-119"}};
    for (const auto& [value, text] : general)
        EXPECT_EQ(number_formats::generalField(value, 18, 11), text);
}

const std::string everywhere = "-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n";
const std::string heads = "compare heads 3d domain\n" + everywhere;

const std::string withDual = "write dual domain file\nend\n";
const std::string withOlf = "write olf domain file\nend\n";

class Comparison : public ProblemRun {
protected:
    // Three bricks in a row whose head is x + 10 y + 100 z, and a dual continuum on their nodes, so
    // that points are located in elements.
    Comparison() {
        problem = brickProblem({3, 1, 1, 1});
        Reals head;
        for (int i = 0; i < 16; ++i) {
            head.push_back(i % 4 + 10 * (i / 4 % 2) + 100 * (i / 8));
        }
        problem["to.head_pm.0001"] = resultFile("0.0", {head});
        addDual(problem, 16);
    }

    Ran runWith(const std::string& observed, const std::string& pm, const std::string& others,
                const std::string& topLevel = "") {
        problem["t.observed_heads"] = observed;
        return run(topLevel + "end\nwrite pm domain file\n" + pm + "end\n" + others);
    }
    Ran runHeads(const std::string& observed) { return runWith(observed, heads, withDual); }

    static void expectFiles(const std::vector<std::string>& names) {
        for (const std::string& name : names) expectFile(name, getDated("to." + name));
    }
};

// Two points in element 1, of which the second is compared with element 2. The third point is
// outside.
const std::string threePoints = "3\n.5 .5 .5 55\n0.25, 0, 0, 1.0 of no interest\n9 9\n9 7\n";

TEST_F(Comparison, LocatesPointsOnceAndReadsTheCacheLater) {
    EXPECT_THAT(runHeads(threePoints).screen,
                HasSubstr("locations\nThis might take several minutes...\n"
                          " 1 of 3 observation points\n 2 of 3 observation points\n"
                          " 3 of 3 observation points\n\n"));
    expectFiles({"compare_heads.dat", "compare_heads_scatter.dat", "ObsShape.txt"});

    // The cache marks the third point as outside, so it is not compared.
    EXPECT_THAT(runHeads(threePoints).screen, Not(HasSubstr("several minutes")));
    expectFiles({"ObsShape.txt"});
    EXPECT_THAT(get("to.compare_heads.dat"),
                HasSubstr("1.2500000000000000\nZONE T=\"straight line\"\n 1.0000000000000000"));
    EXPECT_THAT(get("to.compare_heads.dat"), testing::EndsWith(" 0.99978566529492452\n"));

    // An editor has removed the blanks at the ends of the lines, and the last line end.
    Bytes& cache = problem["to.ObsShape.txt"] = get("to.ObsShape.txt");
    for (std::size_t at; (at = cache.find(" \n")) != Bytes::npos;) cache.erase(at, 1);
    cache.pop_back();
    const Bytes compared = getDated("to.compare_heads.dat");
    EXPECT_EQ(runHeads(threePoints).status, 0);
    EXPECT_EQ(getDated("to.compare_heads.dat"), compared);

    // The values of the cache are not checked: one is not a shape value, and a line is left over.
    problem["to.ObsShape.txt"] =
        expected("ObsShape.txt").replace(12, 18, "                 4") + "more\n";
    EXPECT_EQ(runHeads(threePoints).status, 0);
    EXPECT_THAT(get("to.compare_heads.dat"),
                HasSubstr(" 55.000000000000000 55.500000000000000\n")); // node 1 has head 0
}

TEST_F(Comparison, RefusesDamagedFiles) {
    ASSERT_EQ(runHeads(threePoints).status, 0);
    const std::string cache = get("to.ObsShape.txt");
    std::string word = cache, two = cache, exponent = cache;
    word.replace(40, 3, "abc");
    two.replace(12, 18, "               1 2");
    exponent.replace(exponent.size() - 19, 19, " 0.12500000000"); // and "E-01", which is cut
    const std::pair<std::string, std::string> cases[] = {
        {"", cache},
        {"-1\n", cache},
        {"2147483647\n1 1 1 1\n", cache},
        {"3\n1 1 1 1\n1 1 1 1\n1 1 1\n", cache},
        {"2\n1 1 1 1\n1 1 one 1\n", cache},
        {"2\n1 1 1 1\n1 1 1 /\n", cache}, // a missing value
        {"1\n1,,1 1\n", cache},
        {"/\n", cache},
        {threePoints, ""},
        {threePoints, cache.substr(0, 158) + cache.substr(163)},
        {threePoints, cache.substr(0, cache.size() - 6)},
        {threePoints, exponent},
        {threePoints, exponent + "E-0\n"},
        {threePoints, word},
        {threePoints, two}};
    std::string report;
    for (const auto& [file, located] : cases) {
        problem["to.ObsShape.txt"] = located;
        report += endingOf(runHeads(file).errors) + "\n";
    }
    expectFile("damaged_observations.txt", report);
    expectFailure(runWith("", "compare depth to gw table\n", withDual),
                  {"Failed to open file: t.observed_d2gwt"});
}

TEST_F(Comparison, PointsOutsideTheWindowCountInTheVarianceOnly) {
    // Points on the bounds are inside. The third point is outside: it is not compared, but counts
    // in the variance about the mean of the others.
    runWith(threePoints, "compare heads 3d domain\n0.25 0.5\n0 0.5\n0 9\n", withDual);
    // Squared errors 0.25 + 0.0625; squares about the mean 28: 27^2 + 27^2 + 21^2.
    EXPECT_THAT(get("to.compare_heads.dat"), HasSubstr(" 0.99983543"));
}

TEST_F(Comparison, WithoutVarianceIsNaNOrInfinite) {
    EXPECT_EQ(runHeads("0\n").status, 0);
    EXPECT_EQ(get("to.ObsShape.txt"), "");
    std::string report = getDated("to.compare_heads.dat");
    std::filesystem::remove("to.ObsShape.txt");
    ASSERT_EQ(runHeads("2\n.5 .5 .5 3\n.5 .5 .5 3\n").status, 0);
    expectFile("compare_without_spread.txt", report + getDated("to.compare_heads.dat"));
}

TEST_F(Comparison, NeedsAnElementForEachComparedPoint) {
    const std::string four = "4\n0 0 0 1\n0 0 0 1\n0 0 0 1\n";
    EXPECT_EQ(runHeads(four + "9 9 9 1\n").status, 1); // only the cache marks a point as outside
    EXPECT_EQ(runHeads(four + "9 9 9 1\n").status, 0);
    std::filesystem::remove("to.ObsShape.txt");
    expectFailure(runHeads(four + "0 0 0 1\n"), {"observation 4 takes part", "only 3 elements"});
}

TEST_F(Comparison, UsesTheNearestNodeWithoutElementSearch) {
    runWith("3\n0.5 0.25 0.75 9\n-1e30 0 0 8\n3 1 -7 7\n",
            "compare heads 3d domain\n-1e40 9\n-9 9\n-9 9\n", withOlf);
    EXPECT_FALSE(std::filesystem::exists("to.ObsShape.txt"));
    // The second point is too far from all nodes and keeps the node of the first.
    const Bytes echo = get("to.meshrake.eco");
    expectFile("nearest_nodes.txt",
               echo.substr(echo.find("Target x, y, z")) + getDated("to.compare_heads.dat"));
}

TEST_F(Comparison, UsesTheTopOfTheNearestColumn) {
    problem["to.head_pm.0001"] = resultFile("12.5", {Reals(16, 0.25)});
    problem.erase("to.head_olf.0001");
    // The time-varying topography is at 2, the mesh at 1.
    Reals ground(8, 0.0);
    ground.resize(16, 2.0);
    problem["to.tvtopo_pm.0001"] = resultFile("12.5", {ground});
    problem["t.observed_d2gwt"] = "2\n1.25 0.75 0.5\n-4 1000 0.25\n";
    runWith("1\n0 0 0.5\n", "compare gw table elevation\ncompare depth to gw table\n", withOlf);
    expectFiles({"compare_GWTable_Elevation.dat", "compare_Depth2GWTable.dat"});
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("Target x, y            -4.00000       1000.00000\n"
                          "Found x, y, z           0.00000          1.00000          1.00000\n"
                          "Delta x, y              4.00000       -999.00000\n"));
}

const std::string depths = "write olf domain file\ncompare surface water depth\n" + everywhere;

TEST_F(Comparison, WaterDepthsAreThoseOfTheSurface) {
    problem["t.observed_heads_olf"] = "1\n0.1 0.1 2\n";
    // Only pm has an element search.
    const std::pair<std::string, std::string> cases[] = {
        {"", "      0.10000000E+01      0.20000000E+01      0.50000000E+00"},
        {withDual, "      0.00000000E+00      0.20000000E+01      0.00000000E+00"}};
    for (const auto& [others, words] : cases) {
        runWith("", "", depths + "end\n" + others);
        EXPECT_THAT(get("to.compare_swdepth_scatter_olf.dat"), HasSubstr(words));
    }
}

TEST_F(Comparison, MissingResultsEndTheRun) {
    problem["t.observed_heads_olf"] = "0\n";
    expectFailure(runWith("0\n", "no pm heads\n" + heads, withOlf),
                  {"Head of the pm domain", "\"no pm heads\""});
    expectFailure(runWith("0\n", "", depths + "no olf heads\nend\n"),
                  {"Depth of the olf domain", "to.head_olf.<index>"});
    expectFailure(runWith("0\n", heads, withOlf, "truncate time domain\n5 6\n"),
                  {"to.head_pm.<index>", "time window"});
    EXPECT_FALSE(std::filesystem::exists("to.compare_heads.dat"));
}

} // namespace
