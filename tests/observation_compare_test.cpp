#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/element_search.hpp"
#include "meshrake/observation_compare/node_search.hpp"
#include "meshrake/observation_compare/observation_files.hpp"
#include "tests/runs.hpp"
#include "tvncommon/number_formats.hpp"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

using namespace sample_files;
using box_tree::Point;
using model::Domain;
using observation_compare::LocalPoint;
using runs::Ran;
using testing::HasSubstr;
using testing::Not;
using Points = std::vector<Point>;

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

// Few values make shared faces, equal distances and elements without extent.
double someValue(Random& random, int kind) {
    static constexpr double odd[] = {infinity, -infinity, notANumber, 1e308,       -1e308,
                                     1e200,    1e-310,    5e-324,     6.3e6 + 1e-9};
    switch (kind) {
    case 0:
        return random.below(4);
    case 1:
        return random.below(4) + random.part();
    case 2: // neighbouring doubles on both sides of 2^22
        return 4194304 + (random.below(9) - 5) * 0x1p-31;
    default:
        return random.below(10) == 0 ? odd[random.below(9)] : random.below(3);
    }
}

Point somePoint(Random& random, int kind) {
    return {someValue(random, kind), someValue(random, kind), someValue(random, kind)};
}

// The loop over all elements as it would be written down.
struct PlainSearch {
    const Domain& mesh;
    LocalPoint rst{};

    std::int32_t find(const Point& p) {
        for (std::int32_t e = 0; e < mesh.elementCount; ++e) {
            const auto [low, high] = observation_compare::elementBox(mesh, std::size_t(e));
            int n = 0;
            for (std::size_t a = 0; a < 3; ++a) {
                const double span = high[a] - low[a];
                if (span == 0) continue;
                const double v = (2 * p[a] - high[a] - low[a]) / span;
                rst[std::size_t(n++)] = v != v ? 0 : v;
            }
            if (std::abs(rst[0]) <= 1.00005 && std::abs(rst[1]) <= 1.00005 &&
                std::abs(rst[2]) <= 1.00005)
                return e + 1;
        }
        return 0;
    }
};

// Skewed, overlapping and flat elements; some slots are unused.
Domain soup(Random& random, int kind, int elements) {
    Domain mesh;
    mesh.nodesPerElement = random.below(4) == 0 ? 6 : 8;
    for (int i = 0; i < 8 + elements; ++i) addNode(mesh, somePoint(random, kind));
    for (int i = 0; i < elements * mesh.nodesPerElement; ++i)
        mesh.elementNodes.push_back(random.below(9) == 0 ? 0 : 1 + random.below(mesh.nodeCount));
    mesh.elementCount = elements;
    for (int e = 0; e < elements; e += 2) { // small and flat ones
        const int first = random.below(mesh.nodeCount), range = 1 + random.below(4);
        for (int k = 0; k < mesh.nodesPerElement; ++k)
            mesh.elementNodes[std::size_t(e * mesh.nodesPerElement + k)] =
                1 + (first + random.below(range)) % mesh.nodeCount;
    }
    return mesh;
}

// Anywhere, on nodes, and beside the faces of elements at both sides of the tolerance.
Points pointsFor(const Domain& mesh, Random& random, int kind) {
    Points points;
    for (int i = 0; i < 150; ++i) {
        points.push_back(somePoint(random, kind));
        points.push_back(observation_compare::position(mesh, 1 + random.below(mesh.nodeCount)));
        const auto [low, high] =
            observation_compare::elementBox(mesh, std::size_t(random.below(mesh.elementCount)));
        Point p;
        for (std::size_t a = 0; a < 3; ++a) {
            static constexpr double local[] = {0, 0.3, 1, -1, 1.00004, 1.00005, 1.00006, -1.00006};
            p[a] = (low[a] + high[a] + local[random.below(8)] * (high[a] - low[a])) / 2;
        }
        points.push_back(p);
    }
    return points;
}

TEST(ElementSearch, StopsWhereTheLoopOverAllElementsDoes) {
    Random random;
    int found = 0, partial = 0, always = 0;
    for (int round = 0; round < 400; ++round) {
        const int kind = round % 4;
        const Domain mesh = soup(random, kind, 1 + random.below(150));
        observation_compare::ElementSearch search;
        prepare(search, mesh);
        partial += search.partial.empty() ? 0 : 1;
        always += search.always.empty() ? 0 : 1;
        PlainSearch plain{mesh};
        for (const Point& p : pointsFor(mesh, random, kind)) {
            const std::int32_t expected = plain.find(p);
            ASSERT_EQ(holdingElement(search, p), expected) << "round " << round;
            ASSERT_EQ(search.rst, plain.rst) << "round " << round;
            found += expected > 0;
        }
    }
    EXPECT_GT(found, 10000);
    EXPECT_GT(partial, 100);
    EXPECT_GT(always, 50);
}

// Points at nearly the same distance from the origin, whose squares differ and whose roots do not.
Point onSphere(Random& random) {
    const Point p{random.part() - 0.5, random.part() - 0.5, random.part() - 0.5};
    const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]) + 1e-300;
    return {p[0] / length, p[1] / length, p[2] / length};
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

TEST(NodeSearch, KeepsTheNodeThatTheLoopOverAllNodesDoes) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const int kind = round % 5;
        Domain mesh;
        for (int i = random.below(round % 7 == 0 ? 20 : 600); i > 0; --i)
            addNode(mesh, kind == 4 ? onSphere(random) : somePoint(random, kind));
        std::vector<double> x, y, z;
        for (int i = 0; i < 60; ++i) {
            Point p = kind == 4 ? Point{} : somePoint(random, kind);
            if (i % 3 == 0) p[random.source() % 3] += 0.5; // between the nodes of a lattice
            x.push_back(p[0]);
            y.push_back(p[1]);
            z.push_back(p[2]);
        }
        const bool inPlan = round % 2 == 1;
        const std::int32_t count = round % 3 == 0 ? mesh.nodeCount / 2 : mesh.nodeCount;
        const auto found = observation_compare::nearestNodes(
            {.domain = mesh, .count = count, .inPlan = inPlan}, x, y, z);
        for (std::size_t i = 0; i < x.size(); ++i)
            ASSERT_EQ(found[i], plainNearest(mesh, count, inPlan, {x[i], y[i], z[i]}))
                << "round " << round << ", point " << i;
    }
}

TEST(NodeSearch, TakesTheFirstOfEqualTops) {
    model::run.sheetCount = 3;
    Domain mesh;
    for (const double z : {5.0, 1.0, -1e10, 5.0, 2.0, -2e10, 4.0, 3.0, notANumber})
        addNode(mesh, {0, 0, z});
    EXPECT_EQ(observation_compare::columnTops(mesh), (Integers{1, 8, 0}));
}

TEST(NarrowFields, FixedAreRoundedOnce) {
    const auto fixed = [](double value, int width, int decimals) {
        std::string field(std::size_t(width), '?');
        EXPECT_EQ(number_formats::writeFixedField(value, width, decimals, field.data()),
                  field.data() + width);
        return field;
    };
    EXPECT_EQ(fixed(0.015625, 10, 5), "   0.01562"); // a tie goes to the even digit
    EXPECT_EQ(fixed(-1e-9, 8, 4), " -0.0000");
    EXPECT_EQ(fixed(0.5, 5, 4), ".5000"); // one column short of the zero
    EXPECT_EQ(fixed(-99999.99996, 10, 4), "**********");
    EXPECT_EQ(fixed(-infinity, 10, 4), " -Infinity");
    Random random;
    for (int i = 0; i < 200000; ++i) {
        const double value = std::ldexp(random.part() - 0.5, random.below(80) - 40);
        char expected[64];
        std::snprintf(expected, sizeof expected, "%17.5f", value);
        ASSERT_EQ(fixed(value, 17, 5),
                  std::strlen(expected) == 17 ? expected : std::string(17, '*'));
    }
}

TEST(NarrowFields, GeneralChooseTheirFormAfterRounding) {
    const std::pair<double, const char*> cases[] = {
        {0, "  0.0000000000    "},    {0.0999999999999, " 0.10000000000    "},
        {0.08, " 0.80000000000E-01"}, {99999999999.4, "  99999999999.    "},
        {1e11, " 0.10000000000E+12"}, {-1e-120, "-0.10000000000-119"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(number_formats::generalField(value, 18, 11), text);
}

const std::string everywhere = "-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n";

// Bricks whose head is x + 10 y + 100 z, and a dual continuum on their nodes, so that points are
// located in elements.
Problem bricks(const Grid& grid) {
    Problem problem = brickProblem(grid);
    Reals heads;
    Integers same;
    for (int k = 0, z = 0; k <= grid.layers; z += ++k)
        for (int j = 0; j <= grid.ny; ++j)
            for (int i = 0; i <= grid.nx; ++i) {
                heads.push_back(i + 10 * j + 100 * z);
                same.push_back(std::int32_t(same.size() + 1));
            }
    problem["to.head_pm.0001"] = resultFile("0.0", {heads});
    problem["to.coordinates_dual"] = integerRecord({std::int32_t(same.size())}) +
                                     integerRecord({0}) + integerRecord(same) + integerRecord(same);
    problem["to.elements_dual"] = problem["to.elements_pm"];
    return problem;
}

std::string control(const std::string& pm, const std::string& others) {
    return "end\nwrite pm domain file\n" + pm + "end\n" + others;
}

const std::string withDual = "write dual domain file\nend\n";
const std::string withOlf = "write olf domain file\nend\n";

// What stands behind the first line that begins with `zone`.
std::string behind(const std::string& file, const std::string& zone) {
    const std::string text = get(file);
    const std::size_t at = text.find("\n" + zone);
    return at == std::string::npos ? "no zone" : text.substr(text.find('\n', at + 1) + 1);
}

class Comparison : public testing::Test {
protected:
    Ran run(const std::string& observed, const std::string& pm, const std::string& others) {
        problem["t.observed_heads"] = observed;
        problem["t.plot.control"] = control(pm, others);
        write(problem);
        return runs::runHere();
    }
    Ran runHeads(const std::string& observed) {
        return run(observed, "compare heads 3d domain\n" + everywhere, withDual);
    }
    void expectEnd(const Ran& ran, const std::vector<std::string>& words) {
        EXPECT_EQ(ran.status, 1);
        for (const std::string& word : words) EXPECT_THAT(ran.errors, HasSubstr(word));
    }

    Folder folder;
    Problem problem = bricks({3, 1, 1, 1});
};

// Two points in element 1, the second compared on element 2; the third is nowhere.
const std::string threePoints = "3\n.5 .5 .5 55\n0.25, 0, 0, 1.0 of no interest\n9 9\n9 7\n";

TEST_F(Comparison, LocatesPointsOnceAndTrustsTheCache) {
    Ran ran = runHeads(threePoints);
    EXPECT_EQ(ran.status, 0) << ran.errors;
    EXPECT_THAT(ran.screen, HasSubstr("locations\nThis might take several minutes...\n"
                                      " 1 of 3 observation points\n 2 of 3 observation points\n"
                                      " 3 of 3 observation points\n\n"));
    const std::string cache = get("to.ObsShape.txt");
    const auto line = [](const std::string& element, const std::string& field) {
        std::string text = element + " ";
        for (int k = 0; k < 8; ++k) text += field;
        return text + "\n";
    };
    EXPECT_THAT(cache, testing::StartsWith(line("         1", "  0.12500000000    ")));
    EXPECT_THAT(cache, testing::EndsWith(line("        -1", "  -1.0000000000    ")));
    EXPECT_EQ(behind("to.compare_heads.dat", "ZONE T=\"data\""),
              " 55.000000000000000 55.500000000000000\n"
              " 1.0000000000000000 1.2500000000000000\n"
              " 7.0000000000000000 0.0000000000000000\n"
              "ZONE T=\"straight line\"\n"
              " 0.0000000000000000 0.0000000000000000\n"
              " 55.500000000000000 55.500000000000000\n"
              "Zone T=\"R<sup>2</sup> =    0.9719\"\n"
              " 0.97185359589041098 0.97185359589041098\n");
    EXPECT_THAT(behind("to.compare_heads_scatter.dat", "ZONE T=\"data\""),
                HasSubstr("\n      0.25000000E+00      0.00000000E+00      0.00000000E+00"
                          "      0.10000000E+01      0.12500000E+01      0.25000000E+00\n"));

    ran = runHeads(threePoints);
    EXPECT_EQ(ran.status, 0);
    EXPECT_THAT(ran.screen, Not(HasSubstr("several minutes")));
    EXPECT_EQ(get("to.ObsShape.txt"), cache);
    EXPECT_THAT(behind("to.compare_heads.dat", "ZONE T=\"data\""),
                HasSubstr("1.2500000000000000\nZONE T=\"straight line\"\n 1.0000000000000000"));

    // Shape values that no search gives, one of them without a point, and more than is needed.
    std::string told = cache + "beyond\n";
    told.replace(12, 18, "                 4");
    problem["to.ObsShape.txt"] = told;
    EXPECT_EQ(runHeads(threePoints).status, 0);
    EXPECT_THAT(behind("to.compare_heads.dat", "ZONE T=\"data\""),
                HasSubstr(" 55.000000000000000 55.500000000000000\n")); // node 1 has head 0
}

TEST_F(Comparison, RefusesDamagedFiles) {
    ASSERT_EQ(runHeads(threePoints).status, 0);
    const std::string cache = get("to.ObsShape.txt");
    const std::string observed = "Error reading file: t.observed_heads\n";
    const std::string cached = "Error reading file: to.ObsShape.txt\n";
    std::string word = cache, two = cache;
    word.replace(40, 3, "abc");
    two.replace(12, 18, "               1 2");
    const std::array<std::string, 3> cases[] = {
        {"", cache, observed + "Error detail: End-of-file"},
        {"-1\n", cache, observed + "The number of observations, -1,"},
        {"2147483647\n1 1 1 1\n", cache, observed + "The number of observations, 2147483647,"},
        {"3\n1 1 1 1\n1 1 1 1\n1 1 1\n", cache, observed + "Error detail: End-of-file"},
        {"2\n1 1 1 1\n1 1 one 1\n", cache, observed + "Error detail: Invalid data format"},
        {threePoints, "", cached + "Error detail: End-of-file"},
        {threePoints, cache.substr(0, 162) + cache.substr(163), cached},
        {threePoints, word, cached + "Error detail: Invalid character"},
        {threePoints, two, cached + "Error detail: Invalid character"}};
    for (const auto& [file, located, message] : cases) {
        problem["to.ObsShape.txt"] = located;
        expectEnd(runHeads(file), {message});
    }
    expectEnd(run("", "compare depth to gw table\n", withDual),
              {"Failed to open file: t.observed_d2gwt"});
}

TEST_F(Comparison, OfNothingIsWrittenAsItComes) {
    const std::string rest = "ZONE T=\"straight line\"\n"
                             " 0.10000000000000000E+021 0.10000000000000000E+021\n"
                             " -0.10000000000000000E+021 -0.10000000000000000E+021\n"
                             "Zone T=\"R<sup>2</sup> =       NaN\"\n NaN NaN\n";
    EXPECT_EQ(runHeads("0\n").status, 0);
    EXPECT_EQ(get("to.ObsShape.txt"), "");
    EXPECT_EQ(behind("to.compare_heads.dat", "ZONE T=\"data\""), rest);
    EXPECT_EQ(behind("to.compare_heads_scatter.dat", "ZONE T=\"data\""), "");
}

TEST_F(Comparison, CountsTheWindowInTheErrorAlone) {
    // The bounds are inside; the third point is out, and in the spread about the others' mean.
    const std::string window = "compare heads 3d domain\n0.25 0.5\n0 0.5\n0 9\n";
    ASSERT_EQ(run(threePoints, window, withDual).status, 0);
    // Errors 0.25 + 0.0625; spread about 28: 27^2 + 27^2 + 21^2.
    EXPECT_THAT(behind("to.compare_heads.dat", "Zone"), HasSubstr(" 0.99983543"));

    // Observations that are all alike have no spread.
    ASSERT_EQ(runHeads("2\n.5 .5 .5 3\n.5 .5 .5 3\n").status, 0);
    EXPECT_THAT(behind("to.compare_heads.dat", "ZONE T=\"straight line\""),
                HasSubstr("R<sup>2</sup> = -Infinity\"\n -Infinity -Infinity\n"));
}

TEST_F(Comparison, NeedsAnElementForEachPointThatTakesPart) {
    const std::string four = "4\n0 0 0 1\n0 0 0 1\n0 0 0 1\n";
    EXPECT_EQ(runHeads(four + "9 9 9 1\n").status, 1); // outside, but only the cache tells
    EXPECT_EQ(runHeads(four + "9 9 9 1\n").status, 0);
    std::filesystem::remove("to.ObsShape.txt");
    expectEnd(runHeads(four + "0 0 0 1\n"), {"observation 4 takes part", "only 3 elements"});
}

TEST_F(Comparison, FindsTheNearestNodeWhereNoElementIsLookedFor) {
    const std::string heads = "compare heads 3d domain\n-1e40 9\n-9 9\n-9 9\n";
    const Ran ran = run("3\n0.5 0.25 0.75 9\n-1e30 0 0 8\n3 1 -7 7\n", heads, withOlf);
    EXPECT_EQ(ran.status, 0) << ran.errors;
    EXPECT_FALSE(std::filesystem::exists("to.ObsShape.txt"));
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("to.olf\n\n\n"
                          "Target x, y, z          0.50000          0.25000          0.75000\n"
                          "Found x, y, z           0.00000          0.00000          1.00000\n"
                          "Delta x, y, z          -0.50000         -0.25000          0.25000\n\n\n"
                          "Target x, y, z*****************          0.00000          0.00000\n"
                          "Found x, y, z           0.00000          0.00000          1.00000\n"));
    // The second point is too far from everything and keeps the node of the first.
    EXPECT_THAT(behind("to.compare_heads.dat", "ZONE T=\"data\""),
                testing::StartsWith(" 9.0000000000000000 100.00000000000000\n"
                                    " 8.0000000000000000 100.00000000000000\n"
                                    " 7.0000000000000000 13.000000000000000\n"));
}

TEST_F(Comparison, TakesTheTopOfTheNearestColumn) {
    problem["to.head_pm.0001"] = resultFile("12.5", {Reals(16, 0.25)});
    problem.erase("to.head_olf.0001");
    // The ground has risen from 1 to 2 since.
    Reals ground(8, 0.0);
    ground.resize(16, 2.0);
    problem["to.tvtopo_pm.0001"] = resultFile("12.5", {ground});
    problem["t.observed_d2gwt"] = "2\n1.25 0.75 0.5\n-4 1000 0.25\n";
    const Ran ran =
        run("1\n0 0 0.5\n", "compare gw table elevation\ncompare depth to gw table\n", withOlf);
    EXPECT_EQ(ran.status, 0) << ran.errors;
    EXPECT_THAT(behind("to.compare_GWTable_Elevation.dat", "ZONE T=\"12.5\""),
                testing::StartsWith(" 0.50000000000000000 0.25000000000000000\nZONE"));
    EXPECT_EQ(behind("to.compare_Depth2GWTable.dat", "ZONE T=\"12.5\""),
              " 0.50000000000000000 1.7500000000000000\n"
              " 0.25000000000000000 1.7500000000000000\n"
              "ZONE T=\"straight line\"\n"
              " 0.25000000000000000 0.25000000000000000\n"
              " 1.7500000000000000 1.7500000000000000\n"
              "ZONE T=\"R<sup>2</sup> = -121.0000\"\n"
              " -121.00000000000000 -121.00000000000000\n");
    EXPECT_THAT(get("to.meshrake.eco"),
                HasSubstr("Target x, y            -4.00000       1000.00000\n"
                          "Found x, y, z           0.00000          1.00000          1.00000\n"
                          "Delta x, y              4.00000       -999.00000\n"));
}

TEST_F(Comparison, OfWaterDepthsGoesByTheSurface) {
    problem["t.observed_heads_olf"] = "1\n0.1 0.1 2\n";
    const std::string surface = "write olf domain file\ncompare surface water depth\n" + everywhere;
    EXPECT_EQ(run("", "", surface + "end\n").status, 0);
    EXPECT_THAT(behind("to.compare_swdepth_scatter_olf.dat", "ZONE T=\"data\""),
                HasSubstr("      0.10000000E+01      0.20000000E+01      0.50000000E+00"));
    // Elements are looked for in pm alone.
    EXPECT_EQ(run("", "", surface + "end\n" + withDual).status, 0);
    EXPECT_THAT(behind("to.compare_swdepth_scatter_olf.dat", "ZONE T=\"data\""),
                HasSubstr("      0.00000000E+00      0.20000000E+01      0.00000000E+00"));
}

TEST_F(Comparison, SaysWhatItMisses) {
    problem["t.observed_heads_olf"] = "0\n";
    const std::string heads = "compare heads 3d domain\n" + everywhere;
    const std::string depths = "write olf domain file\ncompare surface water depth\n" + everywhere;
    expectEnd(run("0\n", "no pm heads\n" + heads, withOlf),
              {"Head of the pm domain", "\"no pm heads\""});
    expectEnd(run("0\n", "", depths + "no olf heads\nend\n"),
              {"Depth of the olf domain", "to.head_olf.<index>"});
    put("t.plot.control", "truncate time domain\n5 6\n" + control(heads, withOlf));
    expectEnd(runs::runHere(), {"to.head_pm.<index>", "time window"});
    EXPECT_FALSE(std::filesystem::exists("to.compare_heads.dat"));
}

} // namespace
