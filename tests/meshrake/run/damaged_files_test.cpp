#include "tests/support/runs.hpp"

#include <limits>

// Files whose contents are wrong: a run over them ends with a banner that names the file, and
// neither crashes nor hangs nor takes memory for numbers that only a damaged file can hold.
namespace {

using namespace sample_files;
using runs::Ran;
using runs::runHere;
using testing::HasSubstr;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

// Two bricks in a stack; a surface with walls, a fracture and a dual continuum.
Problem goodProblem() {
    const Grid grid{1, 1, 2, 2};
    Problem problem = brickProblem(grid);
    const Bytes walls = integerRecords({-1, 1, 2}) + integerRecord({0, -1, 0, 0}) +
                        integerRecord({13, 16, 15, 16, 13, 14, 15, 16}) +
                        integerRecord({0, 0, 0, 0});
    addSheetDomain(problem, grid, "olf", 12, walls, integerRecords({0, -1, 1}));
    addSheetDomain(problem, grid, "frac", 16, "", integerRecord({1, 2}) + realRecord({0.5}));
    const Integers nodes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    problem["to.coordinates_dual"] =
        integerRecords({12, 0}) + integerRecord(nodes) + integerRecord(nodes);
    problem["to.elements_dual"] = problem["to.elements_pm"];
    problem["to.sat_pm.0001"] = resultFile("0.0", {std::vector<float>(12, 0.5F)});
    problem["to.v_pm.0001"] = resultFile("0.0", {Reals{1, 2}, Reals{1, 2}, Reals{1, 2}});
    problem["to.species"] = integerRecords({1, 1}) + textRecord("salt", 50) +
                            textRecord("clay", 50) + integerRecords({0, 0});
    problem["to.hmc"] =
        integerRecords({1, 1, 1, 0, 1, 1, 1}) + textRecord("rain", 80) + integerRecords({1, 1});
    return problem;
}

struct Damage {
    std::string file;
    int record, word;
    std::int32_t value;
    std::string what; // in the banner, after the file's name
};

const std::string tooMany = "\nMore than the file can hold: ";
const std::string negative = "\nA count is negative: ";

const std::vector<Damage> damages = {
    {"gen", 1, 0, -1, negative + "-1 title lines\n"},
    {"gen", 1, 0, 2, ""}, // the record of titles is shorter
    {"gen", 3, 0, 10, "unknown unit system\nFile: to.gen\n"},
    {"species", 0, 0, -1, negative + "-1 mobile species\n"},
    {"species", 1, 0, -2, negative + "-2 immobile species\n"},
    {"hmc", 4, 0, 2, tooMany + "2 mixing fractions\n"},
    {"coordinates_pm", 0, 0, 14, tooMany + "14 nodes\n"},
    {"coordinates_pm", 0, 0, 13, ""},
    {"coordinates_pm", 2, 2, -1, "The number of node sheets is negative\n"},
    {"elements_pm", 0, 0, -8, "The number of nodes per element is negative\n"},
    {"elements_pm", 0, 0, most, tooMany + "4294967294 values of pm element arrays\n"},
    {"elements_pm", 2, 0, 13, "An element has pm node 13, which is not in the mesh\n"},
    {"elements_pm", 2, 3, -1, "An element has pm node -1, which is not in the mesh\n"},
    {"elements_pm", 2, 3, 0, "has an unused node slot\n"}, // the thickness needs it
    {"elements_olf", 5, 0, 0, "-"}, // without walls the last record is not looked at
    {"elements_olf", 2, 0, least, "-"},
    {"elements_olf", 6, 0, least, "-"},
    {"elements_dual", 2, 1, 99, "An element has pm node 99, which is not in the mesh\n"},
    {"coordinates_olf", 0, 0, 3,
     "A pm node is linked to global node 16, which is not in this domain\n"},
    {"coordinates_olf", 2, 0, 0, "A node is linked to pm node 0, which is not in the mesh\n"},
    {"coordinates_olf", 3, 8, 17,
     "A pm node is linked to global node 17, which is not in this domain\n"},
    {"coordinates_olf", 3, 8, least, "-"},
    {"coordinates_olf", 6, 0, -2, "The number of wall layers is negative\n"},
    {"coordinates_olf", 6, 0, most, tooMany + "8589934588 values of olf wall arrays\n"},
    {"coordinates_olf", 8, 1, least, "-"}, // a wall node that is none leaves the node as it was
    {"elements_frac", 1, 0, 17, tooMany + "68 values of frac element arrays\n"}};

TEST(DamagedFiles, NumbersThatCannotBe) {
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.file + " record " + std::to_string(damage.record) + " word " +
                     std::to_string(damage.word) + " is " + std::to_string(damage.value));
        const Folder folder;
        Problem problem = goodProblem();
        const std::string name = "to." + damage.file;
        patch(problem.at(name), damage.record, damage.word, damage.value);
        // Truncated, elements are kept although some of their nodes are not in the domain.
        problem["t.plot.control"] = "end\nwrite pm domain file\nend\nwrite frac domain file\nend\n"
                                    "write olf domain file\ntruncate olf domain\n0 1\n0 1\n0 3\n";
        write(problem);
        const Ran ran = runHere();
        EXPECT_EQ(ran.status, damage.what == "-" ? 0 : 1) << ran.errors;
        if (damage.what == "-") continue;
        EXPECT_THAT(ran.errors, HasSubstr(name));
        EXPECT_THAT(ran.errors, HasSubstr(damage.what));
        EXPECT_THAT(get("to.meshrake.eco"), HasSubstr(name));
    }
}

const std::vector<std::string> meshFiles = {
    "to.gen",           "to.species",          "to.hmc",          "to.coordinates_pm",
    "to.elements_pm",   "to.coordinates_olf",  "to.elements_olf", "to.coordinates_frac",
    "to.elements_frac", "to.coordinates_dual", "to.elements_dual"};

TEST(DamagedFiles, CutAtEveryFourBytes) {
    std::vector<std::string> names = meshFiles;
    names.insert(names.end(), {"to.head_pm.0001", "to.head_olf.0002", "to.sat_pm.0001"});
    const Folder folder;
    const Problem good = goodProblem();
    write(good);
    for (const std::string& name : names) {
        const Bytes& whole = good.at(name);
        for (std::size_t length = 0; length < whole.size(); length += 4) {
            put(name, whole.substr(0, length));
            const Ran ran = runHere();
            EXPECT_EQ(ran.status, 1) << name << " " << length;
            EXPECT_THAT(ran.errors, HasSubstr(name)) << length;
        }
        put(name, whole);
    }
}

// Every word of every mesh file, in turn, becomes every one of these: the run may go on or end, but
// in order.
TEST(DamagedFiles, AnyWordAnyValue) {
    const Folder folder;
    const Problem good = goodProblem();
    write(good);
    for (const std::string& name : meshFiles) {
        for (std::size_t at = 0; at < good.at(name).size(); at += 4)
            for (const std::int32_t value : {0, -1, 3, 1 << 24, most, least}) {
                Bytes damaged = good.at(name);
                damaged.replace(at, 4, bytesOf(Integers{value}));
                put(name, damaged);
                const Ran ran = runHere();
                SCOPED_TRACE(name + " " + std::to_string(at) + " " + std::to_string(value));
                EXPECT_TRUE(ran.status == 0 || ran.status == 1);
                EXPECT_THAT(ran.errors, HasSubstr(ran.status == 1 ? "HALTING EXECUTION" : ""));
                EXPECT_THAT(ran.errors, testing::Not(HasSubstr("ALLOCATION")));
            }
        put(name, good.at(name));
    }
}

// Meshes that are whole and make no sense.
TEST(DamagedFiles, DivisionsByNothing) {
    struct Case {
        std::int32_t sheets;
        std::string control, words;
    };
    const Case cases[] = {{0, "", "-"}, // the sheets are counted by the nodes
                          {1, "", "Layer Number of the pm domain"},
                          {1, "no pm layer numbers\n", "Column Number of the pm domain"},
                          {1, "no pm layer numbers\nno pm column numbers\n", "-"},
                          {most, "no pm layer numbers\nno pm column numbers\n",
                           "Depth to groundwater: 12 nodes in 2147483647 sheets"},
                          {4, "truncate pm domain by layer\n0 1\n0 1\n1 1\n",
                           "Truncation of the pm domain by layer"}};
    for (const Case& c : cases) {
        const Folder folder;
        Problem problem = brickProblem({1, 1, 2, 1});
        patch(problem["to.coordinates_pm"], 2, 2, c.sheets);
        problem["t.plot.control"] = "end\nwrite pm domain file\n" + c.control;
        write(problem);
        const Ran ran = runHere();
        EXPECT_EQ(ran.status, c.words == "-" ? 0 : 1) << c.sheets << c.control << ran.errors;
        if (c.words != "-") {
            EXPECT_THAT(ran.errors, HasSubstr("**\n\n" + c.words));
        }
    }
}

} // namespace
